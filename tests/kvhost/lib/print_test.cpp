#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "kvhost/host.h"
#include "kvhost/lib/dialog.h"
#include "kvhost/lib/ini_file.h"
#include "kvhost/lib/kv_grid.h"
#include "kvhost/lib/print_data.h"
#include "kvhost/lib/print_job.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

namespace fs = std::filesystem;
using mrvk::Variant;

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

class PrintTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() /
          ("mrvk_print_" + std::to_string(::getpid()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    settings = (dir / "selfPrn" / "Rpt870401.prn").string();
    FillContracts(grid);
    TakePrintedDocuments();
  }
  void TearDown() override {
    mrvk::SetCurrentUiPort(nullptr);
    fs::remove_all(dir);
  }

  // A contract list: row number, area, tenant, rent (formatted), hidden ID; a group
  // subtotal per area and the grand total, as the layout makes them.
  static void FillContracts(VsFlexGrid& grid) {
    grid.SetFormatString("行号|片区  |租户        |租金      |ID");
    mrvk::RowsArray rows;
    rows.fields = 4;
    rows.rows = 3;
    rows.cells = {"北区", "李<四>", 1200.5, 71,          "北区", "王五",
                  800,    72,       "南区", "赵六 & 子", 1000,   73};
    grid.LoadArray(rows);
    grid.ColHidden(4) = true;
    grid.TextMatrix(1, 4) = "SECRET-ID";
    grid.ColFormat(3) = "#,##0.00";
    grid.Subtotal(
        subtotal::kSum,
        {.group_on = 1, .total_on = 3, .format = "", .fore_color = 128, .caption = "小计%s"});
    grid.Subtotal(subtotal::kSum,
                  {.total_on = 3, .format = "", .back_color = 0xFFFF80, .caption = "合计"});
  }

  fs::path dir;
  std::string settings;
  VsFlexGrid grid{"Vs"};  // the contract list
  PrintJob job;
};

TEST_F(PrintTest, AGridPrintIsAPrintablePageOfWhatTheGridShows) {
  job.Prepare("阳光物业管理有限公司", "制表：张三");
  bool done = false;
  ASSERT_TRUE(job.Print(settings, "合同清单", "片区：北区\r起止日期：2012-10-01 至 2012-10-31",
                        grid, "", /*direct=*/false, "", done))
      << job.ErrorText();
  EXPECT_TRUE(done);

  const auto documents = TakePrintedDocuments();
  ASSERT_EQ(documents.size(), 1u);
  EXPECT_EQ(documents[0].title, "合同清单");
  EXPECT_FALSE(documents[0].direct);
  EXPECT_EQ(fs::path(documents[0].path).parent_path(), dir / "selfPrn" / "preview");
  EXPECT_TRUE(TakePrintedDocuments().empty());  // taken once

  const std::string html = Slurp(documents[0].path);
  EXPECT_NE(html.find("<meta charset=\"utf-8\">"), std::string::npos);
  EXPECT_NE(html.find("@page { size: A4 portrait"), std::string::npos);
  EXPECT_NE(html.find("<div class=\"org\">阳光物业管理有限公司</div>"), std::string::npos);
  EXPECT_NE(html.find("<h1>合同清单</h1>"), std::string::npos);
  EXPECT_NE(html.find("<div>片区：北区</div><div>起止日期：2012-10-01 至 2012-10-31</div>"),
            std::string::npos);
  // The header is repeated on every page; the hidden ID column is left out entirely.
  EXPECT_NE(html.find("<thead>\n<tr><th>行号</th><th>片区</th><th>租户</th><th>租金</th></tr>"),
            std::string::npos);
  EXPECT_EQ(html.find("SECRET-ID"), std::string::npos);
  EXPECT_EQ(Count(html, "<col style"), 4u);
  // Texts escaped, numbers formatted and right-aligned.
  EXPECT_NE(html.find(">李&lt;四&gt;</td>"), std::string::npos);
  EXPECT_NE(html.find(">赵六 &amp; 子</td>"), std::string::npos);
  EXPECT_NE(html.find("<td class=\"r\">1,200.50</td>"), std::string::npos);
  // Two group subtotals in the grid's colour, one grand total.
  EXPECT_EQ(Count(html, "<tr class=\"subtotal\">"), 2u);
  EXPECT_EQ(Count(html, "<tr class=\"total\">"), 1u);
  EXPECT_NE(html.find("color:#800000;\">2,000.50</td>"), std::string::npos);
  EXPECT_NE(html.find("background:#80ffff;\">3,000.50</td>"), std::string::npos);
  EXPECT_NE(html.find("<footer><span>制表：张三</span><span>打印日期：" + PrintDate()),
            std::string::npos);
  // The rows keep the grid's order: the north's subtotal comes before the south's rows.
  EXPECT_LT(html.find("小计北区"), html.find("赵六"));
}

TEST_F(PrintTest, SetupWritesTheSettingsThatLaterPrintsUse) {
  grid.RowHeight(2) = 0;  // filtered out: not printed
  Variant options("orientation=landscape; FontSize=9;MarginLeft=20");
  bool done = false;
  ASSERT_TRUE(job.Setup(settings, "合同清单", "", grid, "共 3 份", /*ask=*/true, options, "", done))
      << job.ErrorText();
  EXPECT_TRUE(done);
  EXPECT_EQ(options.ToString(),
            "Paper=A4;Orientation=1;MarginTop=15;MarginBottom=15;MarginLeft=20;MarginRight=12;"
            "FontSize=9;GridLines=1;PageNumbers=1");
  IniFile ini;
  ini.FileName(settings);
  EXPECT_EQ(ini.ReadInt("Page", "Orientation", 0), 1);
  ASSERT_EQ(TakePrintedDocuments().size(), 1u);  // the setup shows its preview

  ASSERT_TRUE(job.Print(settings, "合同清单", "", grid, "共 3 份", /*direct=*/true, "", done));
  const auto documents = TakePrintedDocuments();
  ASSERT_EQ(documents.size(), 1u);
  EXPECT_TRUE(documents[0].direct);
  const std::string html = Slurp(documents[0].path);
  EXPECT_NE(html.find("size: A4 landscape; margin: 15mm 12mm 15mm 20mm;"), std::string::npos);
  EXPECT_NE(html.find("font-size: 9pt"), std::string::npos);
  EXPECT_EQ(html.find("王五"), std::string::npos);
  EXPECT_NE(html.find("<div class=\"extra\">共 3 份</div>"), std::string::npos);

  // A setting the job does not know is refused and changes nothing.
  Variant bad("FontSize=11;Colour=red");
  EXPECT_FALSE(job.Setup(settings, "合同清单", "", grid, "", /*ask=*/true, bad, "", done));
  EXPECT_FALSE(done);
  EXPECT_EQ(job.ErrorText(), "无效的页面设置: Colour=red");
  EXPECT_EQ(PageSettings::Read(settings).FontSize, 9);
  EXPECT_TRUE(TakePrintedDocuments().empty());
}

// A person at the page setup: the script works on the dialog as a front end would.
TEST_F(PrintTest, SetupAsksThePersonAndACancelChangesNothing) {
  ScriptedUi person;
  mrvk::SetCurrentUiPort(&person);
  auto act = [](Dialog& d, const char* control, const Gesture& g, int index = -1) {
    Control* c = d.Controls().Find(control, index);
    ASSERT_NE(c, nullptr) << control;
    EXPECT_EQ(c->Apply(g), "") << control;
  };
  person.dialogs.push_back([&](Dialog& d) {
    EXPECT_EQ(d.Caption, "页面设置");
    act(d, "cboOrientation", {"pick", "横向"});
    act(d, "txtMargin", {"type", "25"}, 2);
    act(d, "txtFontSize", {"type", "99"});
    act(d, "cmdOK", {"click"});
    EXPECT_TRUE(d.IsShown());  // refused: the dialog stays
    act(d, "txtFontSize", {"type", "8"});
    act(d, "chkGridLines", {"toggle"});
    act(d, "cmdOK", {"click"});
  });
  person.answers.push_back(mrvk::msgbox::kOk);
  bool done = false;
  Variant options;
  ASSERT_TRUE(job.Setup(settings, "合同清单", "", grid, "", /*ask=*/true, options, "", done))
      << job.ErrorText();
  ASSERT_EQ(person.shown.size(), 2u);
  EXPECT_EQ(person.shown[1].prompt, "无效的页面设置: FontSize=99");
  EXPECT_TRUE(done);
  EXPECT_EQ(options.ToString(),
            "Paper=A4;Orientation=1;MarginTop=15;MarginBottom=15;MarginLeft=25;MarginRight=12;"
            "FontSize=8;GridLines=0;PageNumbers=1");
  EXPECT_EQ(PageSettings::Read(settings).Text(), options.ToString());
  ASSERT_EQ(TakePrintedDocuments().size(), 1u);

  person.dialogs.push_back([&](Dialog& d) {
    act(d, "txtFontSize", {"type", "12"});
    act(d, "cmdCancel", {"click"});
  });
  Variant again;
  EXPECT_TRUE(job.Setup(settings, "合同清单", "", grid, "", /*ask=*/true, again, "", done));
  EXPECT_FALSE(done);
  EXPECT_EQ(PageSettings::Read(settings).FontSize, 8);
  EXPECT_TRUE(TakePrintedDocuments().empty());
}

TEST_F(PrintTest, APrintThatCannotBeWrittenSaysWhy) {
  fs::create_directories(dir);
  std::ofstream(dir / "blocker") << "a file where the folder would be";
  bool done = true;
  EXPECT_FALSE(job.Print((dir / "blocker" / "Rpt1.prn").string(), "标题", "", grid, "",
                         /*direct=*/false, "", done));
  EXPECT_FALSE(done);
  EXPECT_NE(job.ErrorText().find("无法建立打印预览目录"), std::string::npos);
  EXPECT_TRUE(TakePrintedDocuments().empty());
}

TEST_F(PrintTest, MaskedColumnsAndMergedHeadersPrintAsShown) {
  KvGrid grid("kvGrid");
  grid.SetFixedRows(2);
  grid.SetRows(4);
  grid.SetFormatString("行号|费用|费用|金额");
  grid.TextMatrix(1, 0) = "行号";
  grid.TextMatrix(1, 1) = "名称";
  grid.TextMatrix(1, 2) = "单位";
  grid.TextMatrix(1, 3) = "金额";
  grid.MergeCells = 1;
  grid.MergeRow(0) = true;
  grid.MergeCol(0) = true;
  grid.MergeCol(3) = true;
  grid.TextMatrix(2, 1) = "房租";
  grid.TextMatrix(2, 3) = "1500";
  grid.Column(3).Masked = true;
  const std::string html = GridPrintHtml(grid, GridPage{"", "费用", "", "", ""}, PageSettings{});
  EXPECT_NE(html.find("<tr><th rowspan=\"2\">行号</th><th colspan=\"2\">费用</th><th "
                      "rowspan=\"2\">金额</th></tr>\n<tr><th>名称</th><th>单位</th></tr>"),
            std::string::npos)
      << html;
  EXPECT_NE(html.find(">***</td>"), std::string::npos);
  EXPECT_EQ(html.find("1500"), std::string::npos);
}

// A sheet's print data: read back as written, and rendered by the host with the sheet's
// layout or its own.
TEST_F(PrintTest, PrintDataIsReadBackAndRenderedWithItsLayoutOrItsOwn) {
  PrintData data;
  PrintSection& section = data.Section(Variant(1));
  section.SetField("标题", "房屋租赁合同");
  section.SetField("租户", "李<四>");
  section.SetField("备注", "第一行\n\t缩进\\结尾");
  section.SetField("标题", "房屋租赁合同书");  // the last text stays
  PrintTable& table = section.AddTable("kvGrid", 3, 2);
  table.Cell(0, 0, "费用名称");
  table.Cell(1, 0, "金额");
  table.Cell(0, 1, "房租");
  table.Cell(1, 1, "1500");
  EXPECT_THROW(table.Cell(3, 0, "x"), mrvk::VbError);
  EXPECT_THROW(section.Table("none"), mrvk::VbError);
  const fs::path file = dir / "selfPrint" / "870201.txt";
  data.Save(file.string());

  PrintData back;
  std::string error;
  ASSERT_TRUE(back.Load(file.string(), error)) << error;
  const PrintSection& s = back.Sections().at(1);
  ASSERT_EQ(s.Fields().size(), 3u);
  EXPECT_EQ(s.Fields()[0], (std::pair<std::string, std::string>{"标题", "房屋租赁合同书"}));
  EXPECT_EQ(s.Field("备注"), "第一行\n\t缩进\\结尾");
  const PrintTable* t = s.FindTable("kvGrid");
  ASSERT_NE(t, nullptr);
  EXPECT_EQ(t->Cols(), 3);
  EXPECT_EQ(t->Rows(), 2);
  EXPECT_EQ(t->Cell(1, 1), "1500");
  EXPECT_EQ(t->Cell(2, 1), "");

  std::string document;
  ASSERT_TRUE(RenderPrintFile(file.string(), /*direct=*/true, document, error)) << error;
  std::string html = Slurp(document);
  EXPECT_NE(html.find("<title>房屋租赁合同书</title>"), std::string::npos);
  EXPECT_NE(html.find("<th>租户</th><td>李&lt;四&gt;</td>"), std::string::npos);
  EXPECT_NE(html.find("<thead><tr><th>费用名称</th><th>金额</th><th></th></tr></thead>"),
            std::string::npos);
  EXPECT_NE(html.find("<td class=\"r\">1500</td>"), std::string::npos);

  std::ofstream(dir / "selfPrint" / "870201.layout.html")
      << "<p>承租方：{{租户}}</p>{{table:kvGrid}}<p>{{未知}}|{{date}}</p>";
  ASSERT_TRUE(RenderPrintFile(file.string(), /*direct=*/false, document, error)) << error;
  html = Slurp(document);
  EXPECT_NE(html.find("<p>承租方：李&lt;四&gt;</p><table class=\"grid\">"), std::string::npos);
  EXPECT_NE(html.find("<p>|" + PrintDate() + "</p>"), std::string::npos);
  const auto documents = TakePrintedDocuments();
  ASSERT_EQ(documents.size(), 2u);
  EXPECT_TRUE(documents[0].direct);
  EXPECT_FALSE(documents[1].direct);
  EXPECT_NE(documents[0].path, documents[1].path);

  EXPECT_FALSE(RenderPrintFile((dir / "none.txt").string(), /*direct=*/false, document, error));
  EXPECT_NE(error.find("打印数据文件不存在"), std::string::npos);
  std::ofstream(file, std::ios::app) << "C\t9\t9\tout of the table\n";
  EXPECT_FALSE(back.Load(file.string(), error));
  EXPECT_NE(error.find("无法识别"), std::string::npos);
  EXPECT_TRUE(back.Sections().empty());
}

}  // namespace
}  // namespace kvhost
