#include "kvhost/lib/kv_grid.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

// A fee-term grid: two header rows, a read-only name, a price, a date and a hidden ID.
class KvGridTest : public ::testing::Test {
 protected:
  void SetUp() override {
    grid.SetFixedRows(2);
    grid.SetRows(4);
    grid.SetFormatString("行号|费用名称      |单价/月   |起始日期   |合同明细ID");
    grid.Column(1).ReadOnly = true;
    grid.Column(2).Kind = GridColumnKind::Number;
    grid.Column(3).Kind = GridColumnKind::Date;
    grid.ColHidden(4) = true;
    grid.TextMatrix(2, 1) = "房租";
    grid.TextMatrix(2, 2) = "1500";
    grid.Editable = true;
    grid.BeforeEdit = [this](int row, int col, std::string& text, bool& cancel) {
      log += "before " + std::to_string(row) + "," + std::to_string(col) + "=" + text + ";";
      if (text == "cancel") cancel = true;
      if (text == "0") text = "";
    };
    grid.AfterEdit = [this](int row, int col) {
      log += "after " + grid.TextMatrix(row, col) + ";";
    };
  }
  std::string Edit(int row, int col, const std::string& text) {
    return grid.Apply({"cell_edit", text, row, col});
  }

  KvGrid grid{"kvGrid"};
  std::string log;
};

TEST_F(KvGridTest, AnEditRunsBeforeAndAfterWithTheNewText) {
  EXPECT_EQ(Edit(2, 2, " 1800.5 "), "");
  EXPECT_EQ(grid.TextMatrix(2, 2), "1800.5");
  EXPECT_EQ(log, "before 2,2=1800.5;after 1800.5;");
  EXPECT_EQ(grid.Row(), 2);
  EXPECT_EQ(grid.Col(), 2);

  log.clear();
  EXPECT_EQ(Edit(2, 2, "0"), "");  // the handler may rewrite the text
  EXPECT_EQ(grid.TextMatrix(2, 2), "");
  EXPECT_EQ(log, "before 2,2=0;after ;");

  // Dates are kept in one form; a cancelled edit leaves the cell.
  EXPECT_EQ(Edit(3, 3, "2012-3-5"), "");
  EXPECT_EQ(grid.TextMatrix(3, 3), "2012-03-05");
  log.clear();
  grid.Column(2).Kind = GridColumnKind::Text;
  EXPECT_EQ(Edit(3, 2, "cancel"), "");
  EXPECT_EQ(grid.TextMatrix(3, 2), "");
  EXPECT_EQ(log, "before 3,2=cancel;");
}

TEST_F(KvGridTest, RefusedEditsSayWhyAndChangeNothing) {
  grid.Editable = false;
  EXPECT_NE(Edit(2, 2, "9"), "");
  grid.Editable = true;
  EXPECT_NE(Edit(2, 1, "水费"), "");        // read-only column
  EXPECT_NE(Edit(1, 2, "单价"), "");        // header row
  EXPECT_NE(Edit(2, 2, "1,800"), "");       // no number
  EXPECT_NE(Edit(2, 3, "2012-02-30"), "");  // no date
  EXPECT_NE(Edit(4, 2, "9"), "");           // no such row
  grid.Visible = false;
  EXPECT_NE(Edit(2, 2, "9"), "");
  EXPECT_EQ(grid.TextMatrix(2, 1), "房租");
  EXPECT_EQ(grid.TextMatrix(2, 2), "1500");
  EXPECT_EQ(grid.TextMatrix(2, 3), "");
  EXPECT_EQ(log, "");
  Gesture type;
  type.kind = "type";
  EXPECT_NE(grid.Apply(type).find("has no gesture"), std::string::npos);
}

TEST_F(KvGridTest, ClicksWorkAlsoWhenNotEditable) {
  std::string clicked;
  grid.CellClick = [&](int row, int col) { clicked += std::to_string(row) + std::to_string(col); };
  grid.DblClick = [&](int row, int col) { clicked += "d" + std::to_string(row + col); };
  grid.Editable = false;
  EXPECT_EQ(grid.Apply(Gesture{"cell_click", "", 2, 3}), "");
  EXPECT_EQ(grid.Apply(Gesture{"cell_dblclick", "", 3, 1}), "");
  EXPECT_EQ(clicked, "23d4");
  EXPECT_EQ(grid.Row(), 3);
}

TEST_F(KvGridTest, StateHidesMaskedColumnsBelowTheHeader) {
  grid.Column(2).Masked = true;
  grid.Column(1).BackColor = 0xE0E0E0;
  grid.ColFormat(2) = "#,##0.00";
  nlohmann::json state;
  grid.WriteState(state);
  EXPECT_EQ(state["type"], "kvGrid");
  EXPECT_EQ(state["fixed_rows"], 2);
  EXPECT_EQ(state["editable"], true);
  EXPECT_EQ(state["cells"][0]["text"][2], "单价/月");
  EXPECT_EQ(state["cells"][2]["text"][2], "***");
  EXPECT_EQ(state["cells"][2]["text"][1], "房租");
  EXPECT_EQ(state["columns"][1]["read_only"], true);
  EXPECT_EQ(state["columns"][1]["back"], 0xE0E0E0);
  EXPECT_EQ(state["columns"][2]["masked"], true);
  EXPECT_EQ(state["columns"][3]["kind"], "date");
  EXPECT_EQ(state["columns"][4]["hidden"], true);

  grid.Column(2).Masked = false;
  state.clear();
  grid.WriteState(state);
  EXPECT_EQ(state["cells"][2]["text"][2], "1,500.00");
}

TEST_F(KvGridTest, DescriptorsFollowTheColumnCount) {
  grid.SetCols(7);
  EXPECT_FALSE(grid.Column(6).ReadOnly);
  EXPECT_THROW(grid.Column(7), mrvk::VbError);
  grid.ResetColumn(1);
  grid.ResetColumn(4);
  EXPECT_FALSE(grid.Column(1).ReadOnly);
  EXPECT_FALSE(grid.ColHidden(4));
}

}  // namespace
}  // namespace kvhost
