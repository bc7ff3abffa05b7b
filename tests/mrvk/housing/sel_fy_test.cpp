// The housing picker reached as a contract or a receipt reaches it: the host's service
// "sel_fy", its parameter New set, the list shown and worked on by a clerk (filters, search,
// choice), or a typed number checked. On both engines; the expected rows are written out.
#include "mrvk/housing/sel_fy.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/search_picker_test.h"

namespace mrvk {
namespace {

using kvhost::Dialog;
using kvhost::Gesture;
using kvhost::ScriptedUi;

class SelFYTest : public kvtest::SearchPickerTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (2,'W2','O''Hara 苑')");
    // Beside the seeded layouts (两室一厅 among them) one with a quote in its name.
    Exec("insert into pdmsjzd (ID,代码,名称,类型) values (901,'H2','三室''大厅','户型')");
    Unit(1, "A-101", "阳光 1栋101", 1, "两室一厅", "85.5", "未出租");
    Unit(2, "A-102", "阳光 1栋102", 1, "三室''大厅", "120", "部分出租");
    Unit(3, "A-103", "Sunny 103", 1, "两室一厅", "90", "已出租");
    Unit(4, "B-201", "o''hara 201", 2, "两室一厅", "60", "已分租");
    Unit(5, "B-202", "Hara 202", 2, "三室''大厅", "70", "已失效");
    Unit(6, "B-203", "X-A-1", 2, "两室一厅", "75", "未出租");
  }
  void Unit(int id, const std::string& number, const std::string& name, int estate,
            const std::string& layout, const std::string& area, const std::string& state) {
    Exec("insert into fwfy (房源ID,房源编号,房源名称,物业ID,户型,面积,出租状态) values (" +
         std::to_string(id) + ",'" + number + "','" + name + "'," + std::to_string(estate) + ",'" +
         layout + "'," + area + ",'" + state + "')");
  }

  // The "sel_fy" service of a host, New set as a contract sheet sets it (nothing for -1).
  static IHostPicker& Units(kvhost::Host& h, int new_mode) {
    return Service(h, "sel_fy", 870201, new_mode);
  }
  static Sel_FY& Picker(IHostPicker& p) { return Object<Sel_FY>(p); }
  bool Show(IHostPicker& p, std::string& text, Variant& value) {
    bool chosen = false;
    kvhost::Status st = host().guarded("Show", [&] { chosen = p.Show(text, value); });
    EXPECT_TRUE(st.ok()) << st.message();
    return chosen;
  }
  bool Validate(IHostPicker& p, const std::string& typed, Variant& value, std::string& text) {
    bool found = false;
    kvhost::Status st =
        host().guarded("Validate", [&] { found = p.Validate("", "", "", typed, value, text); });
    EXPECT_TRUE(st.ok()) << st.message();
    return found;
  }
};

TEST_P(SelFYTest, TheListShowsEveryUnitByNumberUnderItsHeader) {
  IHostPicker& p = Units(host(), -1);
  Sel_FY& sel = Picker(p);
  Rows rows;
  std::string header;
  ShowAnd(p, [&](Dialog& d) {
    EXPECT_EQ(d.Kind(), "picker");
    header = sel.Vs.FormatString();
    for (int r = 1; r < sel.Vs.Rows(); ++r) {
      std::string line;
      for (int c = 0; c < sel.Vs.Cols(); ++c) line += (c ? "|" : "") + sel.Vs.TextMatrix(r, c);
      rows.push_back(line);
    }
    EXPECT_EQ(sel.Vs.FixedCols(), 0);
    EXPECT_EQ(sel.Vs.FrozenCols, 1);
    EXPECT_TRUE(sel.kvTxt[Sel_FY::kState].Enabled);
    EXPECT_EQ(sel.kvTxt[Sel_FY::kState].ListEntries(),
              (Rows{"", "未出租", "部分出租", "已出租", "已失效"}));
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(header, "房源ID|房源编号|物业名称|房源名称|户型结构|面格|出租状态");
  EXPECT_EQ(rows, (Rows{"1|A-101|阳光花园|阳光 1栋101|两室一厅|85.5|未出租",
                        "2|A-102|阳光花园|阳光 1栋102|三室'大厅|120|部分出租",
                        "3|A-103|阳光花园|Sunny 103|两室一厅|90|已出租",
                        "4|B-201|O'Hara 苑|o'hara 201|两室一厅|60|已分租",
                        "5|B-202|O'Hara 苑|Hara 202|三室'大厅|70|已失效",
                        "6|B-203|O'Hara 苑|X-A-1|两室一厅|75|未出租"}));
}

TEST_P(SelFYTest, ForANewContractOnlyUnitsWithSomethingFreeAreListedOrFound) {
  IHostPicker& p = Units(host(), 1);
  Sel_FY& sel = Picker(p);
  Rows rows;
  ShowAnd(p, [&](Dialog& d) {
    EXPECT_FALSE(sel.kvTxt[Sel_FY::kState].Enabled);
    EXPECT_NE(d.Controls().Find("kvTxt", Sel_FY::kState)->Apply({"pick", "已出租"}), "");
    rows = Shown(sel.Vs);
    // A search does not bring the others back.
    Do(d, "SearchBox1", -1, {"type", "B-20"});
    EXPECT_EQ(Current(sel.Vs), "B-203");
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(rows, (Rows{"A-101", "A-102", "B-203"}));

  // The check of a typed number keeps to the same units: B-201 is sublet, B-202 withdrawn,
  // A-103 let.
  Variant value;
  std::string text;
  ASSERT_TRUE(Validate(p, "B-20", value, text));
  EXPECT_EQ(value.ToString() + "|" + text, "6|B-203");
  EXPECT_FALSE(Validate(p, "A-103", value, text));
  EXPECT_FALSE(Validate(p, "Hara", value, text));
  EXPECT_EQ(value.ToString() + "|" + text, "|");

  // Any other New lists every unit again, the state field open.
  p.Parameters().Item("New").Value = 0;
  ShowAnd(p, [&](Dialog& d) {
    EXPECT_TRUE(sel.kvTxt[Sel_FY::kState].Enabled);
    rows = Shown(sel.Vs);
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(rows.size(), 6u);
}

TEST_P(SelFYTest, EstateLayoutAndStateNarrowTheListOnRefresh) {
  IHostPicker& p = Units(host(), -1);
  Sel_FY& sel = Picker(p);
  struct Case {
    const char* estate;  // typed into kvTxt(0); nullptr leaves it
    const char* layout;  // typed into kvTxt(1)
    const char* state;   // picked in kvTxt(2)
    const char* estate_shown;
    Rows rows;
  };
  const Case cases[] = {
      {"W2", "", "", "O'Hara 苑", {"B-201", "B-202", "B-203"}},
      {"O'Hara 苑", "", "", "O'Hara 苑", {"B-201", "B-202", "B-203"}},
      {"", "三室'大厅", "", "", {"A-102", "B-202"}},
      {"W2", "H2", "", "O'Hara 苑", {"B-202"}},
      {"", "", "已失效", "", {"B-202"}},
      {"阳光花园", "", "未出租", "阳光花园", {"A-101"}},
      {"", "", "", "", {"A-101", "A-102", "A-103", "B-201", "B-202", "B-203"}},
  };
  std::vector<std::string> seen;
  ShowAnd(p, [&](Dialog& d) {
    for (const Case& c : cases) {
      Type(d, Sel_FY::kEstate, c.estate);
      Type(d, Sel_FY::kLayout, c.layout);
      Do(d, "kvTxt", Sel_FY::kState, {"pick", c.state});
      Do(d, "Cmd", Sel_FY::kRefresh, {"click"});
      EXPECT_EQ(sel.kvTxt[Sel_FY::kEstate].Text, c.estate_shown) << c.estate;
      EXPECT_EQ(Shown(sel.Vs), c.rows) << c.estate << "/" << c.layout << "/" << c.state;
    }
    // A text neither list knows: the field's message, the text kept as typed, and the list
    // filtered by it finds nothing; the quote in it changes no statement.
    host().ui().answers.push_back(msgbox::kOk);
    host().ui().answers.push_back(msgbox::kOk);
    Type(d, Sel_FY::kEstate, "x' or '1'='1");
    Type(d, Sel_FY::kLayout, "大'厅");
    Do(d, "Cmd", Sel_FY::kRefresh, {"click"});
    EXPECT_EQ(sel.kvTxt[Sel_FY::kEstate].Text, "x' or '1'='1");
    EXPECT_EQ(sel.kvTxt[Sel_FY::kEstate].Value.ToDouble(), 0);
    EXPECT_EQ(Shown(sel.Vs), Rows{});
    ScriptedUi::CancelPicker()(d);
  });
  ASSERT_EQ(host().ui().shown.size(), 3u);  // the list and two boxes
  EXPECT_EQ(host().ui().shown[1].prompt + "|" + host().ui().shown[2].prompt,
            "物业名称输入有误，请重新输入！|户型结构输入有误，请重新输入！");
  EXPECT_EQ(host().ui().shown[1].flags, msgbox::kExclamation);
}

TEST_P(SelFYTest, TheChoiceGivesTheKeyAndNumberAndNoRowGivesZero) {
  IHostPicker& p = Units(host(), -1);
  Sel_FY& sel = Picker(p);
  // Confirm takes the current row, the first when none was clicked; a double click, Enter
  // in the grid and a front end's index answer take theirs.
  EXPECT_EQ(ShowAnd(p, [](Dialog& d) { Do(d, "Cmd", Sel_FY::kSelect, {"click"}); }), "1|A-101");
  EXPECT_EQ(
      ShowAnd(p, [](Dialog& d) { Do(d, "Vs", -1, {.kind = "cell_dblclick", .row = 3, .col = 2}); }),
      "3|A-103");
  EXPECT_EQ(ShowAnd(p,
                    [](Dialog& d) {
                      Do(d, "Vs", -1, {.kind = "cell_click", .row = 5, .col = 1});
                      Do(d, "Vs", -1, {.kind = "keydown", .row = 13});
                    }),
            "5|B-202");
  EXPECT_EQ(ShowAnd(p, ScriptedUi::ChooseRows({3})), "4|B-201");
  EXPECT_EQ(sel.GetValue().ToString() + "|" + sel.GetText(), "4|B-201");

  // The cancel button: nothing chosen; the picker's own result is "0" and "".
  EXPECT_EQ(ShowAnd(p, [](Dialog& d) { Do(d, "Cmd", Sel_FY::kCancel, {"click"}); }), "cancel:");
  EXPECT_EQ(sel.GetValue().ToString() + "|" + sel.GetText(), "0|");

  // A click on the header row, and a list with no rows, choose "0" and "".
  EXPECT_EQ(ShowAnd(p,
                    [](Dialog& d) {
                      Do(d, "Vs", -1, {.kind = "cell_click", .row = 0, .col = 1});
                      Do(d, "Cmd", Sel_FY::kSelect, {"click"});
                    }),
            "0|");
  EXPECT_EQ(ShowAnd(p,
                    [](Dialog& d) {
                      Type(d, Sel_FY::kEstate, "W1");
                      Do(d, "kvTxt", Sel_FY::kState, {"pick", "已失效"});
                      Do(d, "Cmd", Sel_FY::kRefresh, {"click"});
                      Do(d, "Cmd", Sel_FY::kSelect, {"click"});
                    }),
            "0|");
}

TEST_P(SelFYTest, ValidateFindsANumberOrNameFromItsFirstCharacterWithinTheFilters) {
  IHostPicker& p = Units(host(), -1);
  struct Case {
    const char* typed;
    const char* found;  // "value|text", "|" for none
  };
  const Case cases[] = {
      {"A-102", "2|A-102"},  {"阳光 1栋101", "1|A-101"},
      {"Sunny", "3|A-103"},  {"unny", "|"},
      {"-A-1", "|"},         {"X-A", "6|B-203"},
      {"O'HARA", "4|B-201"}, {"x' OR '1'='1", "|"},
      {"B-202", "5|B-202"},
  };
  for (const Case& c : cases) {
    Variant value = Variant("stale");
    std::string text = "stale";
    const bool found = Validate(p, c.typed, value, text);
    EXPECT_EQ(value.ToString() + "|" + text, c.found) << c.typed;
    EXPECT_EQ(found, std::string(c.found) != "|") << c.typed;
  }
  // The filters set in the window hold for the check too.
  ShowAnd(p, [](Dialog& d) {
    Type(d, Sel_FY::kEstate, "W2");
    ScriptedUi::CancelPicker()(d);
  });
  Variant value;
  std::string text;
  EXPECT_FALSE(Validate(p, "A-101", value, text));
  EXPECT_TRUE(Validate(p, "B-203", value, text));
  EXPECT_TRUE(host().ui().shown.size() == 1u);  // the list only, no box
}

TEST_P(SelFYTest, TheSearchMovesToTheFirstHitOrFiltersTheRows) {
  IHostPicker& p = Units(host(), -1);
  Sel_FY& sel = Picker(p);
  const Rows all = {"A-101", "A-102", "A-103", "B-201", "B-202", "B-203"};
  std::string chosen = ShowAnd(p, [&](Dialog& d) {
    // Moving (chkFilter off): every row stays; the first hit is current and on top.
    struct Move {
      const char* text;
      const char* current;
    };
    for (const Move& m : {Move{"b-20", "B-201"}, Move{"HARA", "B-201"}, Move{"1栋102", "A-102"},
                          Move{"101%阳光", "A-101"}, Move{"苑%x-a", "B-203"}}) {
      Do(d, "SearchBox1", -1, {"type", m.text});
      EXPECT_EQ(Shown(sel.Vs), all) << m.text;
      EXPECT_EQ(Current(sel.Vs), m.current) << m.text;
      EXPECT_EQ(sel.Vs.TopRow(), sel.Vs.Row()) << m.text;
    }
    // No hit leaves the current row where it was.
    Do(d, "SearchBox1", -1, {"type", "zzz"});
    EXPECT_EQ(Current(sel.Vs), "B-203");

    // Filtering: the rows without a hit are hidden, the first hit is current.
    Do(d, "SearchBox1", -1, {"type", "hara"});
    Do(d, "chkFilter", -1, {"toggle"});
    EXPECT_EQ(Shown(sel.Vs), (Rows{"B-201", "B-202", "B-203"}));
    EXPECT_EQ(Current(sel.Vs), "B-201");
    // The estate column not searched: only the names hold "hara".
    EXPECT_EQ(sel.SearchBox1.Columns[2].caption, "物业名称");
    Do(d, "SearchBox1", -1, {.kind = "toggle", .col = 2});
    EXPECT_EQ(Shown(sel.Vs), (Rows{"B-201", "B-202"}));
    Do(d, "SearchBox1", -1, {"type", "zzz"});
    EXPECT_EQ(Shown(sel.Vs), Rows{});
    EXPECT_EQ(Current(sel.Vs), "");
    // Cleared: every row again. A reload keeps the search in force.
    Do(d, "SearchBox1", -1, {"clear"});
    EXPECT_EQ(Shown(sel.Vs), all);
    Do(d, "SearchBox1", -1, {"type", "a-10"});
    Do(d, "Cmd", Sel_FY::kRefresh, {"click"});
    EXPECT_EQ(Shown(sel.Vs), (Rows{"A-101", "A-102", "A-103"}));
    Do(d, "Vs", -1, {.kind = "cell_click", .row = 2, .col = 1});
    Do(d, "Vs", -1, {.kind = "keydown", .row = 13});
  });
  EXPECT_EQ(chosen, "2|A-102");

  // Text let puts the text into the search box and searches (filtering still ticked).
  sel.SetText("b-20");
  EXPECT_EQ(sel.SearchBox1.Text, "b-20");
  EXPECT_EQ(Shown(sel.Vs), (Rows{"B-201", "B-202", "B-203"}));
  EXPECT_EQ(sel.GetText(), "b-20");
}

TEST_P(SelFYTest, TheSearchSettingsAreKeptInTheLayoutFileOfThePicker) {
  const std::string file = app_path() + "/selfbb/Sel_FY.txt";
  {
    auto clerk = NewHost();
    IHostPicker& p = Units(*clerk, -1);
    Sel_FY& sel = Picker(p);
    // Nothing saved yet: every column searched, moving.
    EXPECT_EQ(sel.chkFilter.Value, 0);
    for (const auto& c : sel.SearchBox1.Columns) EXPECT_TRUE(c.searched) << c.caption;
    clerk->ui().dialogs.push_back([](Dialog& d) {
      Do(d, "SearchBox1", -1, {.kind = "toggle", .col = 0});
      Do(d, "SearchBox1", -1, {.kind = "toggle", .col = 5});
      Do(d, "chkFilter", -1, {"toggle"});
      Do(d, "Cmd", Sel_FY::kCancel, {"click"});
    });
    std::string text;
    Variant value;
    kvhost::Status st = clerk->guarded("Show", [&] { p.Show(text, value); });
    ASSERT_TRUE(st.ok()) << st.message();
  }  // the clerk's session ends: the picker is cleared
  std::ifstream in(file);
  std::stringstream saved;
  saved << in.rdbuf();
  EXPECT_EQ(saved.str(),
            "[Search]\nField0=0\nField1=1\nField2=1\nField3=1\nField4=1\nField5=0\nField6=1\n"
            "Filter=1\n");

  // The next session reads them back and searches that way.
  IHostPicker& p = Units(host(), -1);
  Sel_FY& sel = Picker(p);
  std::vector<bool> flags;
  for (const auto& c : sel.SearchBox1.Columns) flags.push_back(c.searched);
  EXPECT_EQ(flags, (std::vector<bool>{false, true, true, true, true, false, true}));
  EXPECT_EQ(sel.chkFilter.Value, 1);
  Rows rows;
  ShowAnd(p, [&](Dialog& d) {
    Do(d, "SearchBox1", -1, {"type", "1"});  // the key and the area are not searched
    rows = Shown(sel.Vs);
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(rows, (Rows{"A-101", "A-102", "A-103", "B-201", "B-203"}));
}

TEST_P(SelFYTest, FailuresShowTheFieldsMessageOrTheDatabasesTextUnderTheErrorTitle) {
  IHostPicker& p = Units(host(), -1);
  Exec("drop table pdmsjzd");
  // The layout's check statement fails: the field's message, not the database's text.
  host().ui().answers.push_back(msgbox::kOk);
  ShowAnd(p, [](Dialog& d) {
    Type(d, Sel_FY::kLayout, "H1");
    ScriptedUi::CancelPicker()(d);
  });
  ASSERT_EQ(host().ui().shown.size(), 2u);
  EXPECT_EQ(host().ui().shown[1].prompt, "户型结构输入有误，请重新输入！");

  // The list fails: the database's text under "错误：", and an empty list.
  Exec("drop table fwwy");
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_EQ(ShowAnd(p, [](Dialog& d) { Do(d, "Cmd", Sel_FY::kSelect, {"click"}); }), "0|");
  ASSERT_EQ(host().ui().shown.size(), 4u);
  EXPECT_EQ(host().ui().shown[2].title, "错误：");
  EXPECT_EQ(host().ui().shown[2].flags, msgbox::kCritical);
  EXPECT_NE(host().ui().shown[2].prompt, "");
}

MRVK_ON_BOTH_ENGINES(SelFYTest);

}  // namespace
}  // namespace mrvk
