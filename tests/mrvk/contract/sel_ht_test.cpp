// The contract picker as a receipt or a report's filter reaches it: the host's service
// "sel_ht" with its parameter New, the list and its filters, and a typed number checked. Its
// choice, cancel and search are the searching pickers' own, tested with the housing picker.
// On both engines; the expected rows are written out.
#include "mrvk/contract/sel_ht.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "support/search_picker_test.h"

namespace mrvk {
namespace {

using kvhost::Dialog;
using kvhost::Gesture;
using kvhost::ScriptedUi;

const std::vector<std::string> kAllApproved = {"HT-001", "HT-002", "HT-003", "HT-005", "O'K-006"};

class SelHTTest : public kvtest::SearchPickerTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (2,'W2','O''Hara 苑')");
    // Beside the seeded layouts (两室一厅 among them) one with a quote in its name.
    Exec("insert into pdmsjzd (ID,代码,名称,类型) values (901,'H2','三室''大厅','户型')");
    Unit(1, "A-101", "阳光 1栋101", 1, "两室一厅", "东路1号101");
    Unit(2, "A-102", "阳光 1栋102", 1, "三室''大厅", "东路1号102");
    Unit(3, "B-201", "O''Hara 201", 2, "两室一厅", "西街2号201");
    Unit(4, "B-202", "Hara 202", 2, "三室''大厅", "西街2号202");
    Exec(
        "insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values "
        "(11,'KH01','王建国','13800000001',1)");
    Exec(
        "insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values "
        "(12,'KH02','O''Neil 李','13900000002',1)");
    // Approved ("02") in every state, one saved only ("01"), one whose tenant is unknown and
    // which has no unit.
    Contract(101, "02", "生效", "HT-001", 11, 1, "2012-01-01", "2012-12-31", 12, 3);
    Contract(102, "02", "终止", "HT-002", 12, 3, "2011-03-01", "2012-02-29", 12, 1);
    Contract(103, "02", "完成", "HT-003", 11, 2, "2010-05-01", "2011-04-30", 12, 6);
    Contract(104, "01", "未生效", "HT-004", 12, 4, "2012-11-01", "2013-10-31", 12, 3);
    Contract(105, "02", "生效", "HT-005", 99, 0, "2012-06-01", "2013-05-31", 12, 12);
    Contract(106, "02", "生效", "O''K-006", 12, 4, "2012-09-15", "2013-03-14", 6, 3);
  }
  void Unit(int id, const std::string& number, const std::string& name, int estate,
            const std::string& layout, const std::string& address) {
    Exec("insert into fwfy (房源ID,房源编号,房源名称,物业ID,户型,具体地址,出租状态) values (" +
         std::to_string(id) + ",'" + number + "','" + name + "'," + std::to_string(estate) + ",'" +
         layout + "','" + address + "','已出租')");
  }
  // A contract and, for a unit other than 0, its unit row.
  void Contract(int id, const std::string& smark, const std::string& state,
                const std::string& number, int client, int unit, const std::string& from,
                const std::string& to, int months, int period) {
    Exec(
        "insert into fwhd (合同ID,progID,smark,状态,合同编号,客户ID,起租日期,止租日期,租赁期,"
        "收款期间) values (" +
        std::to_string(id) + ",870201,'" + smark + "','" + state + "','" + number + "'," +
        std::to_string(client) + ",'" + from + "','" + to + "'," + std::to_string(months) + "," +
        std::to_string(period) + ")");
    if (unit != 0) {
      Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (" + std::to_string(id + 1000) +
           "," + std::to_string(id) + "," + std::to_string(unit) + ")");
    }
  }

  // The "sel_ht" service of a host, New set as a receipt sets it (nothing for -1).
  static IHostPicker& Contracts(kvhost::Host& h, int new_mode) {
    return Service(h, "sel_ht", 870301, new_mode);
  }
  static Sel_HT& Picker(IHostPicker& p) { return Object<Sel_HT>(p); }
  // "value|text" of the check of a typed number; "|" when nothing was found.
  std::string Validate(IHostPicker& p, const std::string& typed) {
    Variant value = Variant("stale");
    std::string text = "stale";
    bool found = false;
    kvhost::Status st =
        host().guarded("Validate", [&] { found = p.Validate("", "", "", typed, value, text); });
    EXPECT_TRUE(st.ok()) << st.message();
    const std::string result = value.ToString() + "|" + text;
    EXPECT_EQ(found, result != "|") << typed;
    return result;
  }
};

TEST_P(SelHTTest, TheListShowsApprovedContractsWithTenantUnitAndTermByNumber) {
  IHostPicker& p = Contracts(host(), -1);
  Sel_HT& sel = Picker(p);
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
    // The key is hidden and not searched; the number, tenant and telephone stay in view.
    EXPECT_TRUE(sel.Vs.ColHidden(Sel_HT::kColID));
    EXPECT_FALSE(sel.Vs.ColHidden(Sel_HT::kColNumber));
    EXPECT_EQ(sel.Vs.FixedCols(), 0);
    EXPECT_EQ(sel.Vs.FrozenCols, 4);
    EXPECT_EQ(sel.Vs.ToolTipText, "提示：双击或按回车键选择完毕！");
    std::vector<bool> searched;
    for (const auto& c : sel.SearchBox1.Columns) searched.push_back(c.searched);
    EXPECT_EQ(searched, (std::vector<bool>{false, true, true, true, true, true, true, true, true,
                                           true, true, true}));
    EXPECT_EQ(sel.kvTxt[Sel_HT::kState].Caption, "合同状态");
    EXPECT_TRUE(sel.kvTxt[Sel_HT::kState].Enabled);
    EXPECT_EQ(sel.kvTxt[Sel_HT::kState].ListEntries(), (Rows{"", "未生效", "生效", "终止"}));
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(header,
            "合同ID|租房合同号|租客姓名|联系电话|房源编号|房源名称|物业名称|具体地址|起租日期|"
            "止租日期|租赁期|收款期间");
  // HT-004 is saved but not approved; HT-005's tenant is unknown and it has no unit.
  EXPECT_EQ(rows, (Rows{"101|HT-001|王建国|13800000001|A-101|阳光 1栋101|阳光花园|东路1号101|"
                        "2012-01-01|2012-12-31|12|3",
                        "102|HT-002|O'Neil 李|13900000002|B-201|O'Hara 201|O'Hara 苑|西街2号201|"
                        "2011-03-01|2012-02-29|12|1",
                        "103|HT-003|王建国|13800000001|A-102|阳光 1栋102|阳光花园|东路1号102|"
                        "2010-05-01|2011-04-30|12|6",
                        "105|HT-005|||||||2012-06-01|2013-05-31|12|12",
                        "106|O'K-006|O'Neil 李|13900000002|B-202|Hara 202|O'Hara 苑|西街2号202|"
                        "2012-09-15|2013-03-14|6|3"}));
}

TEST_P(SelHTTest, EstateLayoutAndStateNarrowTheListOnRefresh) {
  IHostPicker& p = Contracts(host(), -1);
  Sel_HT& sel = Picker(p);
  struct Case {
    const char* estate;  // typed into kvTxt(0)
    const char* layout;  // typed into kvTxt(1)
    const char* state;   // picked in kvTxt(2)
    Rows rows;
  };
  const Case cases[] = {
      {"W2", "", "", {"HT-002", "O'K-006"}},
      {"O'Hara 苑", "", "", {"HT-002", "O'K-006"}},
      {"", "三室'大厅", "", {"HT-003", "O'K-006"}},
      {"W1", "H2", "", {"HT-003"}},
      {"", "", "生效", {"HT-001", "HT-005", "O'K-006"}},
      {"", "", "终止", {"HT-002"}},
      // Only approved contracts list, so none is "未生效".
      {"", "", "未生效", {}},
      {"阳光花园", "", "生效", {"HT-001"}},
      {"", "", "", kAllApproved},
  };
  ShowAnd(p, [&](Dialog& d) {
    for (const Case& c : cases) {
      Type(d, Sel_HT::kEstate, c.estate);
      Type(d, Sel_HT::kLayout, c.layout);
      Do(d, "kvTxt", Sel_HT::kState, {"pick", c.state});
      Do(d, "Cmd", Sel_HT::kRefresh, {"click"});
      EXPECT_EQ(Shown(sel.Vs), c.rows) << c.estate << "/" << c.layout << "/" << c.state;
    }
    // A text the estates do not know: the field's message, the text kept as typed, and the
    // list filtered by it finds nothing; the quote in it changes no statement.
    host().ui().answers.push_back(msgbox::kOk);
    Type(d, Sel_HT::kEstate, "x' or '1'='1");
    Do(d, "Cmd", Sel_HT::kRefresh, {"click"});
    EXPECT_EQ(sel.kvTxt[Sel_HT::kEstate].Text, "x' or '1'='1");
    EXPECT_EQ(Shown(sel.Vs), Rows{});
    ScriptedUi::CancelPicker()(d);
  });
  ASSERT_EQ(host().ui().shown.size(), 2u);  // the list and the box
  EXPECT_EQ(host().ui().shown[1].prompt, "物业名称输入有误，请重新输入！");
}

TEST_P(SelHTTest, ForAReceiptOnlyContractsInForceAreListedOrFound) {
  IHostPicker& p = Contracts(host(), 1);
  Sel_HT& sel = Picker(p);
  Rows rows;
  ShowAnd(p, [&](Dialog& d) {
    EXPECT_FALSE(sel.kvTxt[Sel_HT::kState].Enabled);
    EXPECT_NE(d.Controls().Find("kvTxt", Sel_HT::kState)->Apply({"pick", "终止"}), "");
    rows = Shown(sel.Vs);
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(rows, (Rows{"HT-001", "HT-005", "O'K-006"}));

  // The check of a typed number keeps to them: HT-002 has ended, HT-003 is done, and of the
  // two contracts on B-202 only O'K-006 is approved.
  EXPECT_EQ(Validate(p, "HT-002"), "|");
  EXPECT_EQ(Validate(p, "HT-003"), "|");
  EXPECT_EQ(Validate(p, "B-20"), "106|O'K-006");

  // Any other New lists every approved contract again, the state field open.
  p.Parameters().Item("New").Value = 0;
  ShowAnd(p, [&](Dialog& d) {
    EXPECT_TRUE(sel.kvTxt[Sel_HT::kState].Enabled);
    rows = Shown(sel.Vs);
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(rows, kAllApproved);
}

TEST_P(SelHTTest, ValidateFindsAContractByTheBeginningOfItsOwnOrItsUnitsNumber) {
  IHostPicker& p = Contracts(host(), -1);
  struct Case {
    const char* typed;
    const char* found;  // "value|text", "|" for none
  };
  const Case cases[] = {
      {"HT-002", "102|HT-002"}, {"ht-003", "103|HT-003"},  // without regard to case
      {"A-101", "101|HT-001"},                             // the unit's number
      {"B-202", "106|O'K-006"},  // HT-004 on the same unit is not approved
      {"O'K", "106|O'K-006"},   {"HT-004", "|"},
      {"T-001", "|"},        // from the first character only
      {"阳光 1栋101", "|"},  // the unit's name is not looked at
      {"x' OR '1'='1", "|"},
  };
  for (const Case& c : cases) EXPECT_EQ(Validate(p, c.typed), c.found) << c.typed;

  // The filters set in the window hold for the check too.
  ShowAnd(p, [](Dialog& d) {
    Type(d, Sel_HT::kEstate, "W1");
    ScriptedUi::CancelPicker()(d);
  });
  EXPECT_EQ(Validate(p, "B-202"), "|");
  EXPECT_EQ(Validate(p, "HT-003"), "103|HT-003");
  EXPECT_EQ(host().ui().shown.size(), 1u);  // the list only, no box
}

MRVK_ON_BOTH_ENGINES(SelHTTest);

}  // namespace
}  // namespace mrvk
