// The code picker and the housing unit picker, reached as the sheets reach them: the host's
// service of the key, its parameters set, then the list shown and worked on by a clerk, or a
// typed text checked. On both engines.
#include "mrvk/master/sel_pdm.h"

#include <gtest/gtest.h>

#include "kvhost/host_context.h"
#include "kvhost/pickers/module_picker.h"
#include "mrvk/master/sel_pdm_fy.h"
#include "support/engines.h"

namespace mrvk {
namespace {

using kvhost::Dialog;
using kvhost::Gesture;
using kvhost::ScriptedUi;

class SelPdmTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型,电话) values (31,'K03','Ann',1,'555')");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (32,'K01','O''Brien',1)");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (33,'K02','ann lee',1)");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (34,'K04','K01',0)");
  }

  // The "selpdm" service set up for clients, as the simple sheets set it.
  IHostPicker& Clients(int single) {
    IHostPicker* p = host().context().Picker("selpdm");
    EXPECT_NE(p, nullptr);
    EXPECT_TRUE(p->Init(870203));
    p->Parameters().Item("single").Value = single;
    for (auto [name, value] : {std::pair{"编号", "业主编号"},
                               {"名称", "业主名称"},
                               {"ID", "业主ID"},
                               {"table", "fwyz"},
                               {"where", "类型=1"},
                               {"order", "业主编号"}})
      p->Parameters().Item(name).Value = value;
    return *p;
  }
  template <typename T>
  T& Picker(IHostPicker& p) {
    return dynamic_cast<T&>(*dynamic_cast<kvhost::ModulePicker&>(p).Object());
  }
  bool Show(IHostPicker& p, std::string& text, Variant& value) {
    bool chosen = false;
    kvhost::Status st = host().guarded("Show", [&] { chosen = p.Show(text, value); });
    EXPECT_TRUE(st.ok()) << st.message();
    return chosen;
  }
  bool Validate(IHostPicker& p, const std::string& typed, Variant& value, std::string& text,
                const std::string& value_column = "", const std::string& text_column = "") {
    bool found = false;
    kvhost::Status st = host().guarded(
        "Validate", [&] { found = p.Validate("", value_column, text_column, typed, value, text); });
    EXPECT_TRUE(st.ok()) << st.message();
    return found;
  }
  static void Do(Dialog& d, const std::string& control, int index, Gesture g) {
    kvhost::Control* c = d.Controls().Find(control, index);
    ASSERT_NE(c, nullptr) << control;
    ASSERT_EQ(c->Apply(g), "") << control << " " << g.kind;
  }
  // The chosen row's items, joined by "|".
  static std::string Chosen(IHostPicker& p, std::vector<const char*> items) {
    std::string out;
    for (const char* item : items)
      out += (out.empty() ? "" : "|") + p.Objects()->Item(item).ToString();
    return out;
  }
  // The visible rows of a list grid, the cells of `cols` joined by "|".
  static std::vector<std::string> Rows(const kvhost::VsFlexGrid& grid, std::vector<int> cols) {
    std::vector<std::string> out;
    for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
      if (grid.RowHeight(r) == 0) continue;
      std::string line;
      for (int c : cols) line += (line.empty() ? "" : "|") + grid.TextMatrix(r, c);
      out.push_back(line);
    }
    return out;
  }
};

TEST_P(SelPdmTest, OneRowModeListsTheTableByOrderAndHandsBackTheChosenRow) {
  IHostPicker& p = Clients(1);
  selPdm& sel = Picker<selPdm>(p);
  std::vector<std::string> rows;
  host().ui().dialogs.push_back([&](Dialog& d) {
    rows = Rows(sel.Vs, {2, 3, 4, 5});
    EXPECT_FALSE(sel.Vs.IsColumnShown(1));  // no selection column
    EXPECT_FALSE(sel.Vs.IsColumnShown(4));  // the ID stays hidden
    EXPECT_FALSE(sel.Cmd[selPdm::kSelectAll].Visible);
    EXPECT_EQ(d.Kind(), "picker");
    Do(d, "Vs", -1, {.kind = "cell_dblclick", .row = 2, .col = 3});
  });
  Variant value;
  std::string text;
  ASSERT_TRUE(Show(p, text, value));
  // Owners stay out: where 类型=1.
  EXPECT_EQ(rows,
            (std::vector<std::string>{"K01|O'Brien|32|", "K02|ann lee|33|", "K03|Ann|31|555"}));
  EXPECT_EQ(value.ToString() + "|" + text, "33|ann lee");
  ASSERT_NE(p.Objects(), nullptr);
  EXPECT_EQ(Chosen(p, {"lID", "s编号", "s名称"}), "33|K02|ann lee");

  // The cancel button: nothing chosen, the text emptied.
  host().ui().dialogs.push_back([&](Dialog& d) { Do(d, "Cmd", selPdm::kCancel, {"click"}); });
  text = "x";
  EXPECT_FALSE(Show(p, text, value));
  EXPECT_EQ(text, "");

  // Enter on the grid takes the current row, as a double click does.
  host().ui().dialogs.push_back([&](Dialog& d) {
    Do(d, "Vs", -1, {.kind = "cell_click", .row = 3, .col = 3});
    Do(d, "Vs", -1, {.kind = "keydown", .row = 13});
  });
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(value.ToString() + "|" + text, "31|Ann");

  // Confirm on an empty list still selects, with no row.
  p.Parameters().Item("where").Value = "类型=9";
  host().ui().dialogs.push_back([&](Dialog& d) { Do(d, "Cmd", selPdm::kConfirm, {"click"}); });
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(value.ToString() + "|" + text + "|" + Chosen(p, {"lID", "s编号"}), "0||0|");
}

TEST_P(SelPdmTest, SeveralRowsModeTicksRowsAndJoinsTheirIdsAndNames) {
  IHostPicker& p = Clients(2);  // 2 counts as several rows
  selPdm& sel = Picker<selPdm>(p);
  host().ui().dialogs.push_back([&](Dialog& d) {
    EXPECT_TRUE(sel.Vs.IsColumnShown(1));
    EXPECT_TRUE(sel.Cmd[selPdm::kSelectAll].Visible);
    // A click on the selection cell ticks a row, a second one clears it.
    for (int row : {1, 3, 2, 2}) Do(d, "Vs", -1, {.kind = "cell_click", .row = row, .col = 1});
    Do(d, "Vs", -1, {.kind = "cell_click", .row = 2, .col = 3});  // not the selection cell
    EXPECT_EQ(sel.Vs.TextMatrix(1, 1) + "|" + sel.Vs.TextMatrix(2, 1), "√|");
    Do(d, "Cmd", selPdm::kConfirm, {"click"});
  });
  Variant value;
  std::string text;
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(value.ToString() + "|" + text, "32,31|O'Brien,Ann");

  // All, then none: nothing ticked gives empty results.
  host().ui().dialogs.push_back([&](Dialog& d) {
    Do(d, "Cmd", selPdm::kSelectAll, {"click"});
    EXPECT_EQ(Rows(sel.Vs, {1}), (std::vector<std::string>{"√", "√", "√"}));
    Do(d, "Cmd", selPdm::kClearAll, {"click"});
    Do(d, "Cmd", selPdm::kConfirm, {"click"});
  });
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(value.ToString() + "|" + text, "|");

  // A front end's answer by indexes ticks exactly those rows.
  host().ui().dialogs.push_back(ScriptedUi::ChooseRows({2, 1}));
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(value.ToString() + "|" + text, "33,31|ann lee,Ann");
}

TEST_P(SelPdmTest, TheFindBoxNarrowsFromTheLeftOrMovesToTheWholeMatch) {
  IHostPicker& p = Clients(1);
  selPdm& sel = Picker<selPdm>(p);
  host().ui().dialogs.push_back([&](Dialog& d) {
    // The columns to search: the name, by its caption.
    Do(d, "Txt", 1, {"type", "名称"});
    EXPECT_EQ(sel.FindColumns(), (std::vector<int>{3}));
    // Whole match (unchecked): every row stays, the cursor goes to the row equal to the
    // text, letters without regard to case.
    EXPECT_EQ(sel.Check.Caption, "全字匹配");
    Do(d, "Txt", 0, {"type", "ANN"});
    EXPECT_EQ(Rows(sel.Vs, {3}).size(), 3u);
    EXPECT_EQ(sel.Vs.TextMatrix(sel.Vs.Row(), 3), "Ann");
    // From the left (checked): only the rows that begin with the text.
    Do(d, "Check", -1, {"toggle"});
    EXPECT_EQ(sel.Check.Caption, "左起字符匹配");
    EXPECT_EQ(Rows(sel.Vs, {3}), (std::vector<std::string>{"ann lee", "Ann"}));
    EXPECT_EQ(sel.Vs.TextMatrix(sel.Vs.Row(), 3), "ann lee");
    Do(d, "Txt", 0, {"type", "o'"});
    EXPECT_EQ(Rows(sel.Vs, {3}), (std::vector<std::string>{"O'Brien"}));
    // Enter in the find box confirms.
    Do(d, "Txt", 0, {.kind = "keydown", .row = 13});
  });
  Variant value;
  std::string text;
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(text, "O'Brien");
  EXPECT_EQ(sel.LastFind(), "o'");
}

TEST_P(SelPdmTest, CtrlShiftEAsksForTheColumnsAndANumberNamesAColumn) {
  IHostPicker& p = Clients(1);
  selPdm& sel = Picker<selPdm>(p);
  host().ui().inputs.push_back(std::string("2;3"));
  host().ui().inputs.push_back(std::nullopt);
  host().ui().dialogs.push_back([&](Dialog& d) {
    Do(d, "Txt", 0, {.kind = "keydown", .row = 69, .col = 3});
    EXPECT_EQ(sel.FindColumns(), (std::vector<int>{2, 3}));
    EXPECT_EQ(sel.Txt[1].Text, "2;3");
    // A cancelled box keeps the columns.
    Do(d, "Txt", 0, {.kind = "keydown", .row = 69, .col = 3});
    EXPECT_EQ(sel.FindColumns(), (std::vector<int>{2, 3}));
    Do(d, "Check", -1, {"toggle"});
    Do(d, "Txt", 0, {"type", "k0"});  // codes K01, K02, K03, and no name begins so
    EXPECT_EQ(Rows(sel.Vs, {2}).size(), 3u);
    Do(d, "Txt", 0, {"type", "ann "});
    EXPECT_EQ(Rows(sel.Vs, {2}), (std::vector<std::string>{"K02"}));
    Do(d, "Cmd", selPdm::kCancel, {"click"});
  });
  Variant value;
  std::string text;
  EXPECT_FALSE(Show(p, text, value));
  ASSERT_EQ(host().ui().shown.size(), 3u);  // the picker and two input boxes
  EXPECT_EQ(host().ui().shown[1].prompt, "请输入欲查询的列(格式: 列1;列2;...列n):");
  EXPECT_EQ(host().ui().shown[1].title, "查找");
}

TEST_P(SelPdmTest, ValidateFindsACodeOrANameWithinWhere) {
  IHostPicker& p = Clients(1);
  Variant value;
  std::string text;
  ASSERT_TRUE(Validate(p, "K03", value, text));
  EXPECT_EQ(value.ToString() + "|" + text, "31|Ann");
  ASSERT_TRUE(Validate(p, "O'Brien", value, text));
  EXPECT_EQ(value.ToString(), "32");
  EXPECT_EQ(p.Objects()->Item("s编号").ToString(), "K01");
  // The owner whose name is "K01" stays out; the client with that code is found.
  ASSERT_TRUE(Validate(p, "K01", value, text));
  EXPECT_EQ(text, "O'Brien");
  // Nothing found empties both results and the chosen row.
  EXPECT_FALSE(Validate(p, "K04", value, text));
  EXPECT_EQ(value.ToString() + "|" + text, "|");
  EXPECT_EQ(p.Objects()->Item("lID").ToDouble(), 0);
  EXPECT_FALSE(Validate(p, "x' OR '1'='1", value, text));
  // The value and text columns of the field's request.
  EXPECT_TRUE(Validate(p, "Ann", value, text, "业主编号", "业主ID"));
  EXPECT_EQ(value.ToString() + "|" + text, "K03|31");
  EXPECT_TRUE(host().ui().shown.empty());

  // A column the table does not have: the message box, no row, an empty list.
  p.Parameters().Item("名称").Value = "没有这列";
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Validate(p, "K03", value, text));
  ASSERT_EQ(host().ui().shown.size(), 1u);
  EXPECT_EQ(host().ui().shown[0].prompt.rfind("错误：", 0), 0u);
}

class SelPdmFyTest : public SelPdmTest {
 protected:
  void SetUp() override {
    SelPdmTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec("insert into fwly (楼宇ID,楼宇编号,楼宇名称,物业ID) values (2,'L2','二号楼',1)");
    Exec("insert into fwly (楼宇ID,楼宇编号,楼宇名称,物业ID) values (3,'L1','一号楼',1)");
    Unit(41, "F03", "一03", 3, "未出租", 60.5);
    Unit(42, "F01", "二01", 2, "已出租", 80);
    Unit(43, "F02", "一02", 3, "已出租", 45);
    Exec("insert into fwhd (合同ID,progID,smark,状态) values (9,870201,'02','生效')");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (1,9,43)");
  }
  void Unit(int id, const std::string& code, const std::string& name, int building,
            const std::string& state, double area) {
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,楼宇ID,出租状态,面积,业主ID,朝向) "
        "values (" +
        std::to_string(id) + ",'" + code + "','" + name + "',1," + std::to_string(building) + ",'" +
        state + "'," + NumberText(area) + ",34,'南')");
  }
  IHostPicker& Units() {
    IHostPicker* p = host().context().Picker("selpdmfy");
    EXPECT_NE(p, nullptr);
    EXPECT_TRUE(p->Init(870203));
    p->Parameters().Clear();
    return *p;
  }
};

TEST_P(SelPdmFyTest, ListsUnitsByCodeWithinStateContractAndBuilding) {
  IHostPicker& p = Units();
  selPdmFy& sel = Picker<selPdmFy>(p);
  std::vector<std::string> rows;
  host().ui().dialogs.push_back([&](Dialog& d) {
    rows = Rows(sel.Vs, {0, 1, 2, 3, 4, 9, 10, 11});
    EXPECT_EQ(sel.Cmb.List, (std::vector<std::string>{"全部", "一号楼", "二号楼"}));
    EXPECT_TRUE(sel.Cmb.Enabled);
    // The combo box narrows the list to one building.
    Do(d, "Cmb", -1, {"pick", "一号楼"});
    EXPECT_EQ(Rows(sel.Vs, {1}), (std::vector<std::string>{"F02", "F03"}));
    ScriptedUi::ChooseRows({1})(d);
  });
  Variant value;
  std::string text;
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(rows, (std::vector<std::string>{"1|F01|二01|阳光花园|二号楼|80|已出租|K01",
                                            "2|F02|一02|阳光花园|一号楼|45|已出租|K01",
                                            "3|F03|一03|阳光花园|一号楼|60.5|未出租|K01"}));
  EXPECT_EQ(value.ToString() + "|" + text, "41|一03");
  EXPECT_EQ(Chosen(p, {"l房源ID", "s楼宇", "s朝向", "d面积", "s出租状态", "s业主"}),
            "41|一号楼|南|60.5|未出租|K01");

  // Only units not let; only the contract's unit (kept in its detail row); a preselected,
  // locked building.
  auto list = [&](const char* name, Variant v) {
    p.Parameters().Clear();
    p.Parameters().Item(name).Value = v;
    host().ui().dialogs.push_back([&](Dialog& d) {
      rows = Rows(sel.Vs, {1});
      ScriptedUi::CancelPicker()(d);
    });
    Show(p, text, value);
    return rows;
  };
  EXPECT_EQ(list("出租状态", "未出租"), (std::vector<std::string>{"F03"}));
  EXPECT_EQ(list("合同ID", 9), (std::vector<std::string>{"F02"}));
  EXPECT_EQ(list("合同ID", 0).size(), 3u);
  p.Parameters().Item("lock").Value = 1;
  p.Parameters().Item("楼宇").Value = "二号楼";
  host().ui().dialogs.push_back([&](Dialog& d) {
    rows = Rows(sel.Vs, {1});
    EXPECT_FALSE(sel.Cmb.Enabled);
    EXPECT_EQ(sel.Cmb.Text, "二号楼");
    EXPECT_NE(d.Controls().Find("Cmb")->Apply({"pick", "全部"}), "");
    ScriptedUi::CancelPicker()(d);
  });
  Show(p, text, value);
  EXPECT_EQ(rows, (std::vector<std::string>{"F01"}));
}

TEST_P(SelPdmFyTest, ValidateFillsTheWholeUnitWithinTheParameters) {
  IHostPicker& p = Units();
  Variant value;
  std::string text;
  ASSERT_TRUE(Validate(p, "一02", value, text));
  EXPECT_EQ(value.ToString() + "|" + text, "43|一02");
  EXPECT_EQ(Chosen(p, {"s房源编号", "d面积", "s物业"}), "F02|45|阳光花园");

  p.Parameters().Item("出租状态").Value = "未出租";
  EXPECT_FALSE(Validate(p, "F02", value, text));
  EXPECT_EQ(text, "");
  EXPECT_EQ(p.Objects()->Item("l房源ID").ToDouble(), 0);
  p.Parameters().Clear();
  p.Parameters().Item("合同ID").Value = 9;
  EXPECT_FALSE(Validate(p, "F01", value, text));
  EXPECT_TRUE(Validate(p, "F02", value, text));
  // The building counts only when locked.
  p.Parameters().Clear();
  p.Parameters().Item("楼宇").Value = "二号楼";
  EXPECT_TRUE(Validate(p, "F03", value, text));
  p.Parameters().Item("lock").Value = 1;
  EXPECT_FALSE(Validate(p, "F03", value, text));
  EXPECT_TRUE(Validate(p, "F01", value, text));
  p.Parameters().Item("楼宇").Value = "二'号楼";
  EXPECT_FALSE(Validate(p, "F01", value, text));
  EXPECT_TRUE(host().ui().shown.empty());
}

MRVK_ON_BOTH_ENGINES(SelPdmTest);
MRVK_ON_BOTH_ENGINES(SelPdmFyTest);

}  // namespace
}  // namespace mrvk
