#include "mrvk/frame/grid_layout.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "kvhost/lib/ini_file.h"
#include "kvhost/lib/kv_grid.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/status_control.h"
#include "kvhost/lib/tree_view_control.h"
#include "mrvk/frame/frame_test_context.h"

namespace mrvk {
namespace {

namespace fs = std::filesystem;
using kvhost::IniFile;
using kvhost::VsFlexGrid;

RowsArray Rows(const std::vector<std::vector<Variant>>& rows) {
  RowsArray a;
  a.fields = rows.empty() ? 0 : rows[0].size();
  a.rows = rows.size();
  for (const auto& row : rows) a.cells.insert(a.cells.end(), row.begin(), row.end());
  return a;
}

class GridLayoutTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() /
          ("mrvk_layout_" + std::to_string(::getpid()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    context = std::make_unique<LayoutContext>(dir.string());
    file = LayoutPath("RPT_Test", *context);
  }
  void TearDown() override { fs::remove_all(dir); }

  // A report grid: row number, area, building, rent, deposit, hidden ID.
  static void Fill(VsFlexGrid& grid) {
    grid.SetFormatString("行号|片区  |楼宇    |租金    |押金    |ID");
    grid.ColWidth(5) = 0;
    grid.LoadArray(Rows({{"北区", "A栋", 1000, 500, 1},
                         {"北区", "B栋", 1200.5, 0, 2},
                         {"南区", "C栋", 950, 300, 3}}));
  }
  void Write(const std::string& section, const std::string& key, const std::string& value) {
    IniFile ini;
    ini.FileName(file);
    ini.WriteString(section, key, value);
  }
  std::string Read(const std::string& section, const std::string& key) {
    IniFile ini;
    ini.FileName(file);
    return ini.ReadString(section, key, "<missing>");
  }
  std::vector<std::string> Column(const VsFlexGrid& grid, int col) {
    std::vector<std::string> out;
    for (int r = grid.FixedRows(); r < grid.Rows(); ++r) out.push_back(grid.TextMatrix(r, col));
    return out;
  }

  fs::path dir;
  std::unique_ptr<LayoutContext> context;
  std::string file;
};

TEST_F(GridLayoutTest, FirstUseWritesTheDefaultsAndAHiddenColumnKeepsItsWidth) {
  EXPECT_EQ(file, (dir / "selfbb" / "RPT_Test.txt").string());
  EXPECT_TRUE(fs::is_directory(dir / "selfbb"));
  VsFlexGrid grid("Vs");
  Fill(grid);
  LoadGridLayout(file, grid, /*widthsOnly=*/true, *context);
  EXPECT_FALSE(fs::exists(file));  // loading widths only writes nothing
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  ASSERT_TRUE(fs::exists(file));
  EXPECT_EQ(Read("VsColWidth", "VsCol2"), "800");
  EXPECT_EQ(Read("VsIsHidden", "VsCol5"), "1");
  EXPECT_EQ(Read("VsColWidth", "VsCol5"), "<missing>");  // a hidden column writes no width
  // Settings only a person puts in the file are never written.
  EXPECT_EQ(Read("VsIsTotalOn", "VsCol3"), "<missing>");
  EXPECT_EQ(Read("Vs", "VsRowHeight"), "300");

  // The person widens the building column, then hides it: the file keeps the wider width.
  grid.ColWidth(2) = 1500;
  SaveGridLayout(file, grid, /*widthsOnly=*/false);
  grid.ColWidth(2) = 0;
  SaveGridLayout(file, grid, /*widthsOnly=*/false);
  EXPECT_EQ(Read("VsIsHidden", "VsCol2"), "1");
  EXPECT_EQ(Read("VsColWidth", "VsCol2"), "1500");

  VsFlexGrid next("Vs");
  Fill(next);
  LoadGridLayout(file, next, /*widthsOnly=*/false, *context);
  EXPECT_EQ(next.ColWidth(2), 0);
  // Shown again by the file: the width from before it was hidden.
  Write("VsIsHidden", "VsCol2", "0");
  LoadGridLayout(file, next, /*widthsOnly=*/false, *context);
  EXPECT_EQ(next.ColWidth(2), 1500);
  // A file width of 0 with the column not hidden is shown with width 0: no minimum.
  Write("VsColWidth", "VsCol1", "0");
  Write("VsColWidth", "VsCol3", "abc");  // no number: 0
  LoadGridLayout(file, next, /*widthsOnly=*/false, *context);
  EXPECT_EQ(next.ColWidth(1), 0);
  EXPECT_EQ(next.ColWidth(3), 0);
}

TEST_F(GridLayoutTest, SuffixesNameTheGridUnlessItIsVs) {
  VsFlexGrid vs("vs");  // any case of "vs": no name in the suffix
  VsFlexGrid vs_array("Vs", 3);
  VsFlexGrid other("Vs2", 1);
  EXPECT_EQ(GridSuffix(vs), "");
  EXPECT_EQ(GridSuffix(vs_array), "_3");
  EXPECT_EQ(GridSuffix(other), "_Vs2_1");

  // Two grids in one file keep apart.
  Fill(vs);
  Fill(other);
  other.ColWidth(1) = 2222;
  SaveGridLayout(file, vs, /*widthsOnly=*/false);
  SaveGridLayout(file, other, /*widthsOnly=*/false);
  EXPECT_EQ(Read("VsColWidth", "VsCol1"), "600");
  EXPECT_EQ(Read("VsColWidth_Vs2_1", "VsCol1"), "2222");
  EXPECT_EQ(Read("Vs_Vs2_1", "VsFixedCols"), "0");
}

TEST_F(GridLayoutTest, WidthsOnlyTouchesNothingButWidths) {
  for (auto [section, key, value] :
       std::initializer_list<std::array<const char*, 3>>{{"VsColWidth", "VsCol1", "1111"},
                                                         {"VsColFormat", "VsCol3", "#,##0.00"},
                                                         {"VsColAlignment", "VsCol1", "7"},
                                                         {"VsIsTotalOn", "VsCol3", "1"},
                                                         {"VsIsSort", "VsCol3", "4"},
                                                         {"Vs", "VsRowHeight", "450"},
                                                         {"Vs", "VsGridColor", "255"},
                                                         {"Vs", "VsWordWrap", "1"}})
    Write(section, key, value);
  VsFlexGrid grid("Vs");
  Fill(grid);
  const int rows = grid.Rows();
  LoadGridLayout(file, grid, /*widthsOnly=*/true, *context);
  EXPECT_EQ(grid.ColWidth(1), 1111);
  EXPECT_EQ(grid.ColFormat(3), "");
  EXPECT_EQ(grid.ColAlignment(1), kvhost::grid_align::kGeneral);
  EXPECT_EQ(grid.Rows(), rows);                                                    // no totals
  EXPECT_EQ(Column(grid, 1), (std::vector<std::string>{"北区", "北区", "南区"}));  // no sort
  EXPECT_EQ(grid.RowHeight(1), 300);
  EXPECT_EQ(grid.GridColor, 0xC0C0C0);
  EXPECT_FALSE(grid.WordWrap);

  // Saving widths only writes no format, and leaves the grid section alone.
  grid.ColWidth(1) = 1300;
  grid.ColFormat(3) = "0.0";
  SaveGridLayout(file, grid, /*widthsOnly=*/true);
  EXPECT_EQ(Read("VsColWidth", "VsCol1"), "1300");
  EXPECT_EQ(Read("VsColFormat", "VsCol3"), "#,##0.00");
  EXPECT_EQ(Read("Vs", "VsRowHeight"), "450");

  // The full load applies all of it.
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  EXPECT_EQ(grid.ColAlignment(1), 7);
  EXPECT_EQ(grid.RowHeight(1), 450);
  EXPECT_EQ(grid.GridColor, 255);
  EXPECT_TRUE(grid.WordWrap);
  EXPECT_EQ(Column(grid, 3).front(), "1200.5");  // sorted by rent, descending
}

TEST_F(GridLayoutTest, NumberFormatsFollowTheDataTypeTheDecimalsAndTheVersion) {
  context->options["9"] = "3";   // decimals of value type 3
  context->options["14"] = "0";  // decimals of value type 8
  VsFlexGrid grid("Vs");
  grid.SetFormatString("行号|a|b|c|d|e|f|g|h");
  // Per column: data type, value type, format in the file, the column's own format.
  const std::array<const char*, 4> columns[] = {
      {"5", "", "#,##0.00", ""},    // one decimal by VsColFormat_Xs
      {"0", "3", "#,##0.00", ""},   // the decimals of value type 3
      {"5", "8", "#,##0.00", ""},   // those of value type 8
      {"5", "9", "  0.000  ", ""},  // no decimals setting: as read, trimmed
      {"8", "", "###", "old"},      // a text column: "###" clears the format
      {"7", "", "yyyy-mm-dd", ""},  // a date column: as read
      {"5", "", "", "0.0"},         // an empty format leaves the column's own
      {"5", "", ".00", "0.0"}};     // nothing before the point: the statement fails
  for (int c = 1; c <= 8; ++c) {
    const auto& [type, value_type, format, own] = columns[c - 1];
    const std::string key = "VsCol" + std::to_string(c);
    Write("VsColDataType", key, type);
    Write("VsColFormat", key, format);
    if (*value_type) Write("VsColValDataType", key, value_type);
    grid.ColFormat(c) = own;
  }
  Write("VsColFormat_Xs", "VsCol1", "1");
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  std::vector<std::string> formats;
  for (int c = 1; c <= 8; ++c) formats.push_back(grid.ColFormat(c));
  EXPECT_EQ(formats, (std::vector<std::string>{"#,##0.#", "#,##0.###", "#,##0", "0.000", "",
                                               "yyyy-mm-dd", "0.0", "0.0"}));
  EXPECT_EQ(grid.ColDataType(8), 5);  // the statements around it ran

  // Version 700 ends the integer part in "#".
  VsFlexGrid old("Vs");
  old.Version = 700;
  old.SetFormatString("行号|a|b|c|d|e|f|g|h");
  LoadGridLayout(file, old, /*widthsOnly=*/false, *context);
  EXPECT_EQ(old.ColFormat(1), "#,###.#");
  EXPECT_EQ(old.ColFormat(3), "#,###");
}

TEST_F(GridLayoutTest, GroupTotalsAndTheGrandTotal) {
  Write("VsIsGroupOn", "VsCol1", "1");
  Write("VsIsTotalOn", "VsCol3", "1");
  Write("VsIsTotalOn", "VsCol4", "1");
  VsFlexGrid grid("Vs");
  Fill(grid);
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  EXPECT_EQ(Column(grid, 1),
            (std::vector<std::string>{"北区", "北区", "小计北区", "南区", "小计南区", "合计"}));
  EXPECT_EQ(Column(grid, 3),
            (std::vector<std::string>{"1000", "1200.5", "2200.5", "950", "950", "3150.5"}));
  EXPECT_EQ(Column(grid, 4), (std::vector<std::string>{"500", "0", "500", "300", "300", "800"}));
  EXPECT_EQ(grid.Cell(kvhost::cell_property::kForeColor, 3, 3).ToLong(), 128);
  EXPECT_EQ(grid.Cell(kvhost::cell_property::kBackColor, 6, 3).ToLong(), 0xFFFF80);

  // Loading again (a refresh keeps the rows) builds the totals afresh, not twice.
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  EXPECT_EQ(grid.Rows(), 7);
  EXPECT_EQ(grid.TextMatrix(6, 3), "3150.5");
}

TEST_F(GridLayoutTest, TotalsWithoutGroupsGiveOnlyTheGrandTotalAndAnEmptyGridNone) {
  Write("VsIsTotalOn", "VsCol3", "1");
  Write("VsIsHidden", "VsCol1", "1");  // the area is hidden: the caption goes to the building
  VsFlexGrid grid("Vs");
  Fill(grid);
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  ASSERT_EQ(grid.Rows(), 5);
  EXPECT_FALSE(grid.IsSubtotal(3));
  EXPECT_TRUE(grid.IsSubtotal(4));
  EXPECT_EQ(grid.TextMatrix(4, 2) + "|" + grid.TextMatrix(4, 3), "合计|3150.5");

  Write("Vs", "VsTotalSave", "1");
  Write("VsIsSort", "VsCol1", "2");
  VsFlexGrid empty("Vs");
  empty.SetFormatString("行号|片区  |楼宇    |租金    |押金    |ID");
  empty.SetRows(1);
  LoadGridLayout(file, empty, /*widthsOnly=*/false, *context);
  ASSERT_EQ(empty.Rows(), 1);
  EXPECT_EQ(empty.TextMatrix(0, 2), "楼宇");
  EXPECT_EQ(empty.RowHeight(0), 300);
}

TEST_F(GridLayoutTest, GridColourAndSystemColours) {
  int r = -1, g = -1, b = -1;
  EXPECT_TRUE(SplitColour(0x123456, r, g, b));
  EXPECT_EQ((std::vector<int>{r, g, b}), (std::vector<int>{0x56, 0x34, 0x12}));
  EXPECT_TRUE(SplitColour(static_cast<int32_t>(0x80000005), r, g, b));  // the window's white
  EXPECT_EQ((std::vector<int>{r, g, b}), (std::vector<int>{255, 255, 255}));
  EXPECT_FALSE(SplitColour(0x01000000, r, g, b));

  // A file value above 2147483647 becomes 30 minus the value: 2147483678 gives 0x80000000,
  // system colour 0.
  Write("Vs", "VsGridColor", "2147483678");
  VsFlexGrid grid("Vs");
  Fill(grid);
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  EXPECT_EQ(grid.GridColor, 0xC8C8C8);
  // A colour that stands for nothing leaves the grid's own.
  Write("Vs", "VsGridColor", "33554432");
  LoadGridLayout(file, grid, /*widthsOnly=*/false, *context);
  EXPECT_EQ(grid.GridColor, 0xC8C8C8);
}

// A search box keeps its state through SaveStatus and GetStatus.
class SearchBoxProbe : public kvhost::Control, public kvhost::StatusControl {
 public:
  SearchBoxProbe() : Control("SearchBox", "Search") {}
  std::string status = "fields=名称";
  std::string SaveStatus() const override { return status; }
  void GetStatus(const std::string& s) override { status = s; }
};

TEST_F(GridLayoutTest, TheFormWalkKeepsEveryControlTypeAndSkipsFailures) {
  struct Screen {
    kvhost::ControlList list;
    kvhost::KvTxt txt{"kvTxt", 3};
    kvhost::CheckBox check{"chk"};
    kvhost::TextBox text{"txtNote"};
    kvhost::ComboBox combo{"cboKind"};
    kvhost::OptionButton opt0{"optXB", 0};
    kvhost::OptionButton opt1{"optXB", 1};
    kvhost::TreeView tree{"tvw"};
    kvhost::KvGrid detail{"kvGrid"};
    VsFlexGrid vs{"Vs"};
    SearchBoxProbe search;
    Screen() {
      for (kvhost::Control* c : std::initializer_list<kvhost::Control*>{
               &txt, &check, &text, &combo, &opt0, &opt1, &tree, &detail, &vs, &search})
        list.Add(*c);
      kvhost::OptionButton::SetGroup({&opt0, &opt1});
      tree.Nodes.Add(nullptr, kvhost::TreeRelationship::Last, "k1", "北区");
      tree.Nodes.Add(nullptr, kvhost::TreeRelationship::Last, "k2", "南区");
      detail.SetFormatString("行号|名称    |金额");
      Fill(vs);
    }
  };
  Screen saved;
  saved.txt.Text = "A01栋 ";
  saved.txt.Value = Variant(int32_t{42});
  saved.check.Value = 1;
  saved.text.Text = "备注";
  saved.combo.Text = "住宅";
  saved.opt1.Select();
  saved.tree.SetSelectedItem(saved.tree.Nodes.Item(2));
  saved.detail.ColWidth(1) = 2500;
  saved.vs.ColWidth(2) = 1700;
  saved.search.status = "fields=编号";
  sbSaveFormStatus(file, /*pbOnlyColWidth=*/false, saved.list);
  EXPECT_EQ(Read("Form", "KVTXT_S_kvTxt_3_Text") + "|" + Read("Form", "KVTXT_S_kvTxt_3_Value") +
                "|" + Read("Form", "OPTIONBUTTON_optXB_1") + "|" +
                Read("Form", "KVGRID_kvGrid_Col1") + "|" + Read("VsColWidth", "VsCol2"),
            "A01栋|42|1|2500|1700");

  Write("Form", "CHECKBOX_chk_bad", "x");  // an unknown key is ignored
  Screen loaded;
  sbGetFormStatus(file, /*pbOnlyColWidth=*/false, loaded.list, *context);
  ASSERT_NE(loaded.tree.SelectedItem(), nullptr);
  EXPECT_EQ(loaded.txt.Text + "|" + loaded.txt.Value.ToString() + "|" + loaded.text.Text + "|" +
                loaded.combo.Text + "|" + loaded.tree.SelectedItem()->Text + "|" +
                loaded.search.status,
            "A01栋|42|备注|住宅|南区|fields=编号");
  EXPECT_EQ((std::vector<int>{loaded.check.Value, loaded.opt0.Value, loaded.opt1.Value,
                              loaded.detail.ColWidth(1), loaded.vs.ColWidth(2)}),
            (std::vector<int>{1, 0, 1, 2500, 1700}));

  // A detail grid with fewer columns than the file, and a tree without the saved node: the
  // rest of the walk still runs.
  Screen changed;
  changed.detail.SetCols(1);
  changed.tree.Nodes.Clear();
  sbGetFormStatus(file, /*pbOnlyColWidth=*/true, changed.list, *context);
  EXPECT_EQ(changed.tree.SelectedItem(), nullptr);
  EXPECT_EQ(changed.vs.ColWidth(2), 1700);
  EXPECT_EQ(changed.search.status, "fields=编号");
}

TEST(GridWheel, StepsPositionsAndTopRows) {
  LayoutContext context("/tmp");
  EXPECT_EQ(WheelRate(context), 5);  // option missing or 0
  context.options["mouseeventscrollrate"] = "3";
  EXPECT_EQ(WheelRate(context), 3);
  EXPECT_EQ(WheelSteps(/*rows=*/101, /*rate=*/5), 20);
  EXPECT_EQ(WheelSteps(/*rows=*/1, /*rate=*/5), 0);
  EXPECT_EQ(WheelPosition(/*top_row=*/14, /*rate=*/5), 2);
  EXPECT_EQ(WheelTopRow(/*step=*/3, /*rate=*/5, /*rows=*/101), 3);     // below R: n itself
  EXPECT_EQ(WheelTopRow(/*step=*/5, /*rate=*/5, /*rows=*/101), 20);    // (n - 1) x R
  EXPECT_EQ(WheelTopRow(/*step=*/30, /*rate=*/5, /*rows=*/101), 100);  // at most Rows - 1
}

}  // namespace
}  // namespace mrvk
