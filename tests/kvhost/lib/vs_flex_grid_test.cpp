#include "kvhost/lib/vs_flex_grid.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

using mrvk::Variant;

mrvk::RowsArray Rows(const std::vector<std::vector<Variant>>& rows) {
  mrvk::RowsArray a;
  a.fields = rows.empty() ? 0 : rows[0].size();
  a.rows = rows.size();
  for (const auto& row : rows) a.cells.insert(a.cells.end(), row.begin(), row.end());
  return a;
}

// A report grid: row number, area, building, rent, deposit.
void FillRentGrid(VsFlexGrid& grid) {
  grid.SetFormatString("行号|片区  |楼宇    |租金    |押金    ");
  grid.LoadArray(Rows({{"北区", "A栋", 1000, 500},
                       {"北区", "A栋", 1200.5, 0},
                       {"北区", "B栋", 800, 300},
                       {"南区", "C栋", 950, Variant::Null()}}));
}

std::vector<std::string> Column(const VsFlexGrid& grid, int col) {
  std::vector<std::string> out;
  for (int r = grid.FixedRows(); r < grid.Rows(); ++r) out.push_back(grid.TextMatrix(r, col));
  return out;
}

// A fresh rent grid for each test.
class VsFlexGridTest : public ::testing::Test {
 protected:
  VsFlexGridTest() { FillRentGrid(grid); }
  VsFlexGrid grid{"Vs"};
};

TEST(VsFlexGridSetup, FormatStringSetsColumnsAndLoadArrayFillsTheRowsAsText) {
  VsFlexGrid grid("Vs");
  grid.SetFormatString("行号|编号    |名称        |费用ID");
  ASSERT_EQ(grid.Cols(), 4);
  EXPECT_EQ(grid.TextMatrix(0, 1), "编号");  // the blanks size the column, they are no text
  EXPECT_EQ(grid.ColWidth(0), 400);
  EXPECT_EQ(grid.ColWidth(1), 800);
  EXPECT_EQ(grid.ColWidth(2), 1200);
  EXPECT_EQ(grid.ColWidth(3), 600);
  EXPECT_EQ(grid.FormatString(), "行号|编号|名称|费用ID");

  // The loaded rows go under the fixed row as text.
  grid.LoadArray(Rows({{"甲", 12.5, mrvk::Date::FromYmd(2012, 3, 5), "dropped"},
                       {Variant::Null(), 3, Variant(), "dropped"}}));
  ASSERT_EQ(grid.Rows(), 3);
  EXPECT_EQ(grid.TextMatrix(1, 1), "甲");
  EXPECT_EQ(grid.TextMatrix(1, 2), "12.5");
  EXPECT_EQ(grid.TextMatrix(1, 3), "2012-03-05");
  EXPECT_EQ(grid.TextMatrix(2, 1), "");
  EXPECT_EQ(grid.TextMatrix(2, 2), "3");
  EXPECT_EQ(grid.TextMatrix(1, 0), "");  // the fixed column is the logic's

  // A second load replaces the rows, subtotals included.
  grid.Subtotal(subtotal::kSum, {.group_on = -1, .total_on = 2, .format = "", .caption = "合计"});
  grid.LoadArray(Rows({{"乙", 7, Variant(), Variant()}}));
  ASSERT_EQ(grid.Rows(), 2);
  EXPECT_FALSE(grid.IsSubtotal(1));
  EXPECT_EQ(grid.TextMatrix(1, 1), "乙");
}

TEST_F(VsFlexGridTest, ABadIndexIsARunTimeFailureAndChangesNothing) {
  EXPECT_THROW(grid.TextMatrix(grid.Rows(), 1), mrvk::VbError);
  EXPECT_THROW(grid.ColWidth(5), mrvk::VbError);
  const int rows = grid.Rows();
  EXPECT_THROW(
      grid.Subtotal(subtotal::kSum, {.group_on = 1, .total_on = 9, .format = "", .caption = ""}),
      mrvk::VbError);
  EXPECT_EQ(grid.Rows(), rows);
}

TEST_F(VsFlexGridTest, NestedGroupsCloseInsideOut) {
  for (int group : {1, 2})
    grid.Subtotal(
        subtotal::kSum,
        {.group_on = group, .total_on = 3, .format = "", .fore_color = 128, .caption = "小计%s"});
  grid.Subtotal(subtotal::kSum, {.group_on = -1, .total_on = 3, .format = "", .caption = "合计"});
  EXPECT_EQ(Column(grid, 2), (std::vector<std::string>{"A栋", "A栋", "小计A栋", "B栋", "小计B栋",
                                                       "", "C栋", "小计C栋", "", ""}));
  EXPECT_EQ(Column(grid, 1),
            (std::vector<std::string>{"北区", "北区", "北区", "北区", "北区", "小计北区", "南区",
                                      "南区", "小计南区", "合计"}));
  EXPECT_EQ(Column(grid, 3), (std::vector<std::string>{"1000", "1200.5", "2200.5", "800", "800",
                                                       "3000.5", "950", "950", "950", "3950.5"}));
  // The inner rows are coloured from their group column on.
  EXPECT_EQ(grid.Cell(cell_property::kForeColor, 3, 1).ToLong(), kNoColor);
  EXPECT_EQ(grid.Cell(cell_property::kForeColor, 3, 2).ToLong(), 128);
}

TEST_F(VsFlexGridTest, AboveTheGroupAndCleared) {
  grid.SubtotalPosition = subtotal_position::kAbove;
  grid.Subtotal(subtotal::kCount, {.group_on = 1, .total_on = 4, .format = "", .caption = "%s"});
  grid.Subtotal(subtotal::kMax, {.group_on = -1, .total_on = 3, .format = "", .caption = "最高"});
  EXPECT_EQ(Column(grid, 1),
            (std::vector<std::string>{"最高", "北区", "北区", "北区", "北区", "南区", "南区"}));
  EXPECT_EQ(grid.TextMatrix(1, 3), "1200.5");
  EXPECT_EQ(grid.TextMatrix(2, 4), "3");  // three filled deposit cells
  EXPECT_EQ(grid.TextMatrix(6, 4), "0");

  grid.Subtotal(subtotal::kClear);
  EXPECT_EQ(Column(grid, 1), (std::vector<std::string>{"北区", "北区", "北区", "南区"}));
  EXPECT_EQ(grid.TextMatrix(0, 1), "片区");
}

TEST(VsFlexGridSort, SettingsAndGroupsKeepTheirTotals) {
  VsFlexGrid grid("Vs");
  grid.SetFormatString("行号|编号|金额");
  grid.LoadArray(Rows({{"b", "10"}, {"A", "9"}, {"c", "x"}, {"a", "9.5"}}));
  grid.SetCol(2);
  grid.SetSort(grid_sort::kGenericAscending);
  EXPECT_EQ(Column(grid, 2), (std::vector<std::string>{"9", "9.5", "10", "x"}));
  grid.SetSort(grid_sort::kGenericDescending);
  EXPECT_EQ(Column(grid, 2), (std::vector<std::string>{"x", "10", "9.5", "9"}));
  grid.SetCol(1);
  grid.SetSort(grid_sort::kStringAscending);
  EXPECT_EQ(Column(grid, 1), (std::vector<std::string>{"A", "a", "b", "c"}));
  grid.SetSort(grid_sort::kStringNoCaseDescending);
  EXPECT_EQ(Column(grid, 1), (std::vector<std::string>{"c", "b", "A", "a"}));  // stable

  VsFlexGrid rent("Vs");
  FillRentGrid(rent);
  rent.Subtotal(subtotal::kSum, {.group_on = 1, .total_on = 3, .format = "", .caption = "小计%s"});
  rent.SetCol(3);
  rent.SetSort(grid_sort::kNumericDescending);
  EXPECT_EQ(Column(rent, 3),
            (std::vector<std::string>{"1200.5", "1000", "800", "3000.5", "950", "950"}));
}

TEST(VsFlexGridState, LargeGridsSendAWindowOfRows) {
  VsFlexGrid grid("Vs");
  grid.SetFormatString("行号|编号");
  std::vector<std::vector<Variant>> rows;
  for (int i = 0; i < 1000; ++i) rows.push_back({Variant(i)});
  grid.LoadArray(Rows(rows));

  ASSERT_EQ(grid.Apply(Gesture{"scroll", "", 500, -1}), "");
  nlohmann::json state;
  grid.WriteState(state);
  EXPECT_EQ(state["rows"], 1001);
  EXPECT_EQ(state["top_row"], 500);
  ASSERT_EQ(state["cells"].size(), 1 + GridControl::kStateWindowRows);
  EXPECT_EQ(state["cells"][0]["text"][1], "编号");
  EXPECT_EQ(state["cells"][1]["row"], 500);
  EXPECT_EQ(state["cells"][1]["text"][1], "499");
  EXPECT_EQ(state["window"], (nlohmann::json{{"first", 500}, {"count", 200}}));

  // Near the end the window is what is left.
  ASSERT_EQ(grid.Apply(Gesture{"scroll", "", 950, -1}), "");
  state.clear();
  grid.WriteState(state);
  EXPECT_EQ(state["cells"].size(), 1 + 51);
  EXPECT_EQ(state["window"], (nlohmann::json{{"first", 950}, {"count", 51}}));

  // A search hides the rows without the text; the window carries only rows that show and
  // says how many show in all and above it. 0..999 holding "1": 271, of them 176 below 500.
  ASSERT_EQ(grid.Apply(Gesture{"search", "1"}), "");
  EXPECT_EQ(grid.TopRow(), 2);
  ASSERT_EQ(grid.Apply(Gesture{"scroll", "", 501, -1}), "");
  state.clear();
  grid.WriteState(state);
  EXPECT_EQ(state["window"],
            (nlohmann::json{
                {"first", 501}, {"count", 95}, {"shown", 271}, {"above", 176}, {"previous", 2}}));
  EXPECT_EQ(state["cells"][1]["text"][1], "501");
  ASSERT_EQ(grid.Apply(Gesture{"search", ""}), "");
  state.clear();
  grid.WriteState(state);
  EXPECT_EQ(state["window"], (nlohmann::json{{"first", 1}, {"count", 200}}));
}

TEST_F(VsFlexGridTest, RangesOfCellPropertiesAndTheirState) {
  grid.SetCell(cell_property::kBackColor, 3, 4, 1, 2, Variant(0x00FF00));
  grid.SetCell(cell_property::kFontBold, 2, 1, 2, 1, Variant(true));
  EXPECT_EQ(grid.Cell(cell_property::kBackColor, 1, 2).ToLong(), 0x00FF00);
  EXPECT_EQ(grid.Cell(cell_property::kBackColor, 3, 4).ToLong(), 0x00FF00);
  EXPECT_EQ(grid.Cell(cell_property::kBackColor, 4, 2).ToLong(), kNoColor);
  EXPECT_EQ(grid.Cell(cell_property::kBackColor, 1, 1).ToLong(), kNoColor);
  grid.SetCell(cell_property::kText, 4, 1, 4, 2, Variant("空"));
  EXPECT_EQ(grid.TextMatrix(4, 2), "空");

  nlohmann::json state;
  grid.WriteState(state);
  const auto& styles = state["cells"][2]["styles"];
  ASSERT_EQ(styles.size(), 4);  // columns 1 to 4 of row 2
  EXPECT_EQ(styles[0]["col"], 1);
  EXPECT_EQ(styles[0]["bold"], true);
  EXPECT_EQ(styles[1]["back"], 0x00FF00);
}

TEST_F(VsFlexGridTest, ClicksMoveTheCurrentCellAndRaiseTheirEvents) {
  int clicks = 0, doubles = 0;
  grid.Click = [&] { ++clicks; };
  grid.DblClick = [&] { ++doubles; };
  EXPECT_EQ(grid.Apply(Gesture{"cell_dblclick", "", 3, 2}), "");
  EXPECT_EQ(grid.Row(), 3);
  EXPECT_EQ(grid.Col(), 2);
  EXPECT_EQ(doubles, 1);
  EXPECT_EQ(clicks, 0);

  EXPECT_NE(grid.Apply(Gesture{"cell_click", "", 9, 1}), "");
  grid.Enabled = false;
  EXPECT_NE(grid.Apply(Gesture{"cell_click", "", 1, 1}), "");
  EXPECT_NE(grid.Apply(Gesture{"cell_edit", "", 1, 1}), "");
  EXPECT_EQ(clicks, 0);
  EXPECT_EQ(grid.Row(), 3);
}

TEST_F(VsFlexGridTest, APersonSizesAndHidesColumns) {
  Gesture g{"col_width", "1500", -1, 2};
  EXPECT_EQ(grid.Apply(g), "");
  EXPECT_EQ(grid.ColWidth(2), 1500);
  g.text = "0";
  EXPECT_EQ(grid.Apply(g), "");
  EXPECT_FALSE(grid.IsColumnShown(2));
  for (const char* bad : {"-5", "12.5", "abc", "40000", ""}) {
    g.text = bad;
    EXPECT_EQ(grid.Apply(g),
              "Vs takes a column width from 0 to 32767, not \"" + std::string(bad) + "\"");
  }
  g.col = 9;
  g.text = "100";
  EXPECT_EQ(grid.Apply(g), "Vs has no column 9");
  EXPECT_EQ(grid.ColWidth(2), 0);
}

}  // namespace
}  // namespace kvhost
