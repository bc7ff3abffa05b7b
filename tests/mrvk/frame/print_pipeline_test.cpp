#include "mrvk/frame/print_pipeline.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/print_job.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/frame_test_context.h"

namespace mrvk {
namespace {

namespace fs = std::filesystem;

class PrintPipelineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() /
          ("mrvk_pipeline_" + std::to_string(::getpid()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    context = std::make_unique<LayoutContext>(dir.string() + "/");
    kvhost::TakePrintedDocuments();
  }
  void TearDown() override { fs::remove_all(dir); }

  // A contract sheet: two fields, then a fee grid with a masked price column.
  struct Sheet {
    kvhost::ControlList controls;
    kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
    kvhost::KvGrid grid{"kvGrid"};
    Sheet() {
      kvTxt.Add(controls, 0).Caption = "  合同编号 ";
      kvTxt[0].Text = "HT2012100001";
      kvTxt.Add(controls, 1).Caption = "租户";
      kvTxt[1].Text = "李四";
      controls.Add(grid);
      grid.SetRows(4);
      grid.SetFormatString("行号|费用名称|单价");
      grid.Column(2).Masked = true;
      grid.TextMatrix(1, 1) = "房租";
      grid.TextMatrix(1, 2) = "1500";
      grid.TextMatrix(2, 1) = "物业费";
      grid.TextMatrix(2, 2) = "80";
    }
  };

  fs::path dir;
  std::unique_ptr<LayoutContext> context;
};

TEST_F(PrintPipelineTest, FilesAndFolders) {
  // The doubled "/" of AppPath + "/selfPrn" is reduced, and the folders are made.
  EXPECT_EQ(ReportPrintSettings(*context, 870401), dir.string() + "/selfPrn/Rpt870401.prn");
  EXPECT_TRUE(fs::is_directory(dir / "selfPrn"));
  EXPECT_EQ(PrintDataFile(*context, 870201), dir.string() + "/selfPrint/870201.txt");
  EXPECT_TRUE(fs::is_directory(dir / "selfPrint"));
  EXPECT_EQ(ScreenPrintSettings(*context, "Cx_YjSk"), dir.string() + "/Cx_YjSk.Prn");
}

TEST_F(PrintPipelineTest, TheDataFileHoldsFieldsOwnFieldsAndTheUsedRows) {
  Sheet sheet;
  const std::string file = PrintDataFile(*context, 870201);
  WritePrintDataFile(
      file, sheet.controls, [](kvhost::PrintSection& s) { s.SetField("房屋信息", "北区A栋101"); },
      &sheet.grid);
  kvhost::PrintData back;
  std::string error;
  ASSERT_TRUE(back.Load(file, error)) << error;
  const kvhost::PrintSection& s = back.Sections().at(1);
  // The caption trimmed is the name.
  EXPECT_EQ(s.Field("合同编号") + "|" + s.Field("租户") + "|" + s.Field("房屋信息"),
            "HT2012100001|李四|北区A栋101");
  const kvhost::PrintTable* table = s.FindTable("kvGrid");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->Rows(), 3);  // row 3 has an empty name: the count ends there
  // The header prints unchanged, the masked cells as stars.
  EXPECT_EQ(table->Cell(2, 0) + "|" + table->Cell(2, 1) + "|" + table->Cell(2, 2) + "|" +
                table->Cell(1, 2),
            "单价|***|***|物业费");

  // A grid whose row 1 has an empty name gives the header alone; the same progID writes
  // over the same file.
  sheet.grid.TextMatrix(1, 1) = "";
  EXPECT_EQ(UsedPrintRows(sheet.grid), 1);
  WritePrintDataFile(PrintDataFile(*context, 870201), sheet.controls, {}, &sheet.grid);
  ASSERT_TRUE(back.Load(file, error)) << error;
  EXPECT_EQ(back.Sections().at(1).FindTable("kvGrid")->Rows(), 1);
  EXPECT_EQ(back.Sections().at(1).Field("房屋信息"), "");
}

TEST_F(PrintPipelineTest, TheGridPrintUsesTheEnginesTexts) {
  kvhost::VsFlexGrid grid("Vs");
  grid.SetFormatString("行号|名称");
  std::string error;
  ASSERT_TRUE(PrintGrid(*context, ReportPrintSettings(*context, 870401), "合同清单", "", grid,
                        /*direct=*/true, /*setup=*/false, "", error))
      << error;
  auto documents = kvhost::TakePrintedDocuments();
  ASSERT_EQ(documents.size(), 1u);
  EXPECT_TRUE(documents[0].direct);
  std::ostringstream html;
  html << std::ifstream(documents[0].path).rdbuf();
  EXPECT_NE(html.str().find("<div class=\"org\">阳光物业</div>"), std::string::npos);
  EXPECT_NE(html.str().find("<span>制表：张三</span>"), std::string::npos);
}

}  // namespace
}  // namespace mrvk
