// The host's pickers, on both engines: the check of a typed text through a field's statement,
// the lists behind a field's picker key, and the host's own pickers by statement, dictionary
// type, employees and accounts. Each is driven as a clerk drives it: a typed text, or a list
// shown and answered by choosing rows, typing in its find box, or cancelling.
#include <gtest/gtest.h>

#include "kvhost/host_context.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/pickers/host_list.h"
#include "kvhost/pickers/statement_picker.h"
#include "mrvk/frame/picker_contract.h"
#include "support/engines.h"

namespace kvhost {
namespace {

using mrvk::Variant;

class PickerTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (7,'W02','东方花园')");
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (8,'W01','O''Hara 公寓')");
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (9,'B03','百花苑')");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (21,'K01','张三',1)");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (22,'K02','李''四',1)");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (23,'Y01','王五',0)");
  }

  // Opens the buildings' sheet in new mode: kvTxt(2) is bound to the estates (gy_wy).
  KvTxt& EstateField() {
    screen_ = host().open("PDMLy", 870001, 0);
    EXPECT_NE(screen_, nullptr) << host().last_error();
    Variant result;
    EXPECT_TRUE(host().invoke(*screen_, "FileNew", {}, result).ok());
    return *dynamic_cast<KvTxt*>(screen_->design()->Controls().Find("kvTxt", 2));
  }
  void Gest(KvTxt& field, Gesture g) {
    Status st = host().gesture(*screen_, "kvTxt", field.Index(), g);
    EXPECT_TRUE(st.ok()) << g.kind << ": " << st.message();
  }

  mrvk::IHostPicker& Service(const std::string& key) {
    mrvk::IHostPicker* p = host().context().Picker(key);
    EXPECT_NE(p, nullptr) << key;
    EXPECT_TRUE(p->Init(870201));
    return *p;
  }
  // A statement picker as a field's check sets it up.
  mrvk::IHostPicker& Statement(const std::string& key, const char* field, const char* sql,
                               const char* valid, const char* order) {
    mrvk::IHostPicker& p = Service(key);
    p.Parameters().Item("FieldName").Value = field;
    p.Parameters().Item("SQL").Value = sql;
    p.Parameters().Item("Valid").Value = valid;
    p.Parameters().Item("Order").Value = order;
    return p;
  }
  // Calls into the pickers as the module does, with the session's boxes.
  bool Validate(mrvk::IHostPicker& p, const std::string& typed, Variant& value, std::string& text,
                const std::string& value_column = "", const std::string& text_column = "") {
    bool found = false;
    Status st = host().guarded(
        "Validate", [&] { found = p.Validate("", value_column, text_column, typed, value, text); });
    EXPECT_TRUE(st.ok()) << st.message();
    return found;
  }
  bool Show(mrvk::IHostPicker& p, std::string& text, Variant& value) {
    bool chosen = false;
    Status st = host().guarded("Show", [&] { chosen = p.Show(text, value); });
    EXPECT_TRUE(st.ok()) << st.message();
    return chosen;
  }
  // The shown cells of the list's visible rows (from the header row on with `captions`), one
  // text per row ("a|b").
  static std::vector<std::string> Rows(const VsFlexGrid& grid, bool captions = false) {
    std::vector<std::string> out;
    for (int r = captions ? 0 : grid.FixedRows(); r < grid.Rows(); ++r) {
      if (grid.RowHeight(r) == 0) continue;
      std::string line;
      for (int c = 0; c < grid.Cols(); ++c) {
        if (grid.IsColumnShown(c)) line += (line.empty() ? "" : "|") + grid.TextMatrix(r, c);
      }
      out.push_back(line);
    }
    return out;
  }

  Screen* screen_ = nullptr;
};

TEST_P(PickerTest, ATypedCodeOrNameIsCheckedAndAQuoteNeverBreaksTheStatement) {
  KvTxt& field = EstateField();
  Gest(field, {"type", "W02"});
  Gest(field, {"leave"});
  EXPECT_EQ(field.Text + "=" + field.Value.ToString(), "东方花园=7");
  // A name with a quote in it is found as typed.
  Gest(field, {"type", "O'Hara 公寓"});
  Gest(field, {"leave"});
  EXPECT_EQ(field.Text + "=" + field.Value.ToString(), "O'Hara 公寓=8");
  EXPECT_TRUE(host().ui().shown.empty());

  // A text that would widen the condition, or holds an @, finds nothing: the field's
  // message, no value, the text as typed.
  for (const std::string typed : {"x' or '1'='1", "@", "W0@"}) {
    host().ui().answers.push_back(mrvk::msgbox::kOk);
    Gest(field, {"type", typed});
    Gest(field, {"leave"});
    EXPECT_EQ(field.Text, typed);
    EXPECT_EQ(field.Value.ToDouble(), 0) << typed;
    ASSERT_FALSE(host().ui().shown.empty());
    EXPECT_EQ(host().ui().shown.back().prompt, "所属物业输入有误，请重新输入！");
  }
  EXPECT_EQ(host().ui().shown.size(), 3u);
}

TEST(SpliceTyped, QuotesEveryAtAndRefusesAnAtOutsideQuotes) {
  struct Case {
    const char* sql;
    const char* typed;
    const char* want;  // nullptr: refused
  } cases[] = {
      {"a='@' or b='@'", "it's", "a='it''s' or b='it''s'"},
      {"a='@' or b='@'", "@x", "a='@x' or b='@x'"},
      {"a like 'x''@%'", "1", "a like 'x''1%'"},
      {"no marks", "x", "no marks"},
      {"a=@", "0 or 1=1", nullptr},
      {"a='x''' or b=@", "1", nullptr},
  };
  for (const Case& c : cases) {
    std::string refusal;
    const std::optional<std::string> got = SpliceTyped(c.sql, c.typed, refusal);
    if (c.want) {
      EXPECT_EQ(got.value_or("refused: " + refusal), c.want) << c.sql;
    } else {
      EXPECT_FALSE(got) << c.sql;
      EXPECT_EQ(refusal, std::string("选择列表的语句中“@”不在引号内，未执行：") + c.sql);
    }
  }
}

TEST_P(PickerTest, AFieldsListOffersTheTableByCodeAndAChoiceFillsTextAndValue) {
  KvTxt& field = EstateField();
  std::vector<std::string> offered;
  host().ui().dialogs.push_back([&](Dialog& d) {
    offered = Rows(dynamic_cast<VsFlexGrid&>(*d.Controls().Find("Vs")));
    ScriptedUi::ChooseRows({1})(d);
  });
  Gest(field, {"pick"});
  EXPECT_EQ(offered, (std::vector<std::string>{"B03|百花苑", "W01|O'Hara 公寓", "W02|东方花园"}));
  EXPECT_EQ(field.Text + "=" + field.Value.ToString(), "O'Hara 公寓=8");
  EXPECT_EQ(host().ui().shown.back().kind, "picker");
  EXPECT_EQ(host().ui().shown.back().title, "物业");

  // Cancelling leaves the field as it was, also a typed text that is still to be checked.
  Gest(field, {"type", "W02"});
  Gest(field, {"leave"});
  host().ui().dialogs.push_back(ScriptedUi::CancelPicker());
  Gest(field, {"pick"});
  EXPECT_EQ(field.Text + "=" + field.Value.ToString(), "东方花园=7");
  Gest(field, {"type", "B03"});
  host().ui().dialogs.push_back(ScriptedUi::CancelPicker());
  Gest(field, {"pick"});
  EXPECT_EQ(field.Text, "B03");
  Gest(field, {"leave"});
  EXPECT_EQ(field.Text + "=" + field.Value.ToString(), "百花苑=9");
}

TEST_P(PickerTest, TheStatementPickerChecksByItsConditionAndListsInOrder) {
  mrvk::IHostPicker& p =
      Statement("sel_id_j", "租客信息",
                " Select 业主ID,业主编号 As 租客编号,业主名称 As 租客姓名 From fwyz where 类型=1",
                " 业主编号='@' or 业主名称='@'", " 业主编号,业主名称");

  Variant value;
  std::string text;
  ASSERT_TRUE(Validate(p, "K02", value, text));
  EXPECT_EQ(text + "=" + value.ToString(), "李'四=22");
  ASSERT_TRUE(Validate(p, "李'四", value, text));
  EXPECT_EQ(value.ToDouble(), 22);
  EXPECT_EQ(p.Objects()->Item("租客编号").ToString(), "K02");
  // The value and text columns of the field's check name other columns of the row.
  ASSERT_TRUE(Validate(p, "张三", value, text, "租客编号", "业主ID"));
  EXPECT_EQ(value.ToString(), "K01");
  EXPECT_EQ(text, "21");
  // An owner is no client; nothing found empties the text and zeroes the value.
  EXPECT_FALSE(Validate(p, "王五", value, text));
  EXPECT_EQ(text + "=" + value.ToString(), "=0");
  EXPECT_FALSE(Validate(p, "' or 1=1 or '", value, text));
  EXPECT_TRUE(host().ui().shown.empty());

  std::vector<std::string> rows;
  host().ui().dialogs.push_back([&](Dialog& d) {
    rows = Rows(dynamic_cast<StatementPicker&>(p).List()->Vs, /*captions=*/true);
    ScriptedUi::ChooseRows({1})(d);
  });
  ASSERT_TRUE(Show(p, text, value));
  EXPECT_EQ(rows, (std::vector<std::string>{"租客编号|租客姓名", "K01|张三", "K02|李'四"}));
  EXPECT_EQ(text + "=" + value.ToString(), "李'四=22");

  host().ui().dialogs.push_back(ScriptedUi::CancelPicker());
  EXPECT_FALSE(Show(p, text, value));
  EXPECT_EQ(text, "");
}

TEST_P(PickerTest, AFailingOrRefusedStatementIsSaidAndLeavesTheFieldAsItWas) {
  Exec("insert into fwfy_fz (AutoID,房源ID,房间号) values (1,5,'101')");
  struct Case {
    const char* sql;
    const char* valid;
    const char* said;
  } cases[] = {
      {" select AutoID,房间号 from fwfy_fz where 没有这列=1", " 房间号='@'", "没有这列"},
      // An @ outside quotes would run the typed text as SQL: refused before anything runs.
      {" select AutoID,房间号 from fwfy_fz where 1=1", " 房间号=@",
       "错误：选择列表的语句中“@”不在引号内，未执行： 房间号=@"},
  };
  for (const Case& c : cases) {
    mrvk::IHostPicker& p = Statement("sel_inner_j", "分租房间", c.sql, c.valid, " 房间号");
    Variant value = Variant(5);
    std::string text = "A";
    host().ui().shown.clear();
    host().ui().answers.push_back(mrvk::msgbox::kOk);
    EXPECT_FALSE(Validate(p, "'0' or 1=1", value, text));
    EXPECT_EQ(text + "=" + value.ToString(), "A=5");
    ASSERT_EQ(host().ui().shown.size(), 1u);
    const std::string& prompt = host().ui().shown[0].prompt;
    EXPECT_EQ(prompt.rfind("错误：", 0), 0u) << prompt;
    EXPECT_NE(prompt.find(c.said), std::string::npos) << prompt;
  }
}

TEST_P(PickerTest, DictionaryEmployeesAndLeafAccounts) {
  mrvk::IHostPicker& dict = Service("sel_pdmsjzd");
  dict.Parameters().Item("Lx").Value = "所属区域";
  Variant value;
  std::string text;
  ASSERT_TRUE(Validate(dict, "02", value, text));
  EXPECT_EQ(text + "=" + value.ToString(), "西城区=32");
  // Another type's entry is not in this list.
  EXPECT_FALSE(Validate(dict, "南", value, text));
  dict.Parameters().Item("Lx").Value = "房屋朝向";
  EXPECT_TRUE(Validate(dict, "南", value, text));

  mrvk::IHostPicker& staff = Service("sel_pdmgy");
  ASSERT_TRUE(Validate(staff, "002", value, text));
  EXPECT_EQ(text + "=" + value.ToString(), "王芳=2");

  // Below 5502: the leaf accounts only with ismx, never 5502 itself nor 5503.
  Exec("insert into pdmkjkm (科目ID,科目编码,科目名称,是否明细) values (10,'550299','其他',0)");
  Exec("insert into pdmkjkm (科目ID,科目编码,科目名称,是否明细) values (11,'5503','利息',1)");
  mrvk::IHostPicker& accounts = Service("selpdmkjkm");
  accounts.Parameters().Clear();
  accounts.Parameters().Item("科目编码").Value = "5502";
  accounts.Parameters().Item("ismx").Value = 1;
  std::vector<std::string> rows;
  auto look = [&](Dialog& d) {
    rows = Rows(dynamic_cast<StatementPicker&>(accounts).List()->Vs);
    ScriptedUi::CancelPicker()(d);
  };
  host().ui().dialogs.push_back(look);
  Show(accounts, text, value);
  EXPECT_EQ(rows, (std::vector<std::string>{"550201|房租收入", "550202|物业管理费收入",
                                            "550203|水电费收入", "550204|其他租赁收入"}))
      << ::testing::PrintToString(rows);
  EXPECT_FALSE(Validate(accounts, "550299", value, text));
  EXPECT_FALSE(Validate(accounts, "5502", value, text));
  ASSERT_TRUE(Validate(accounts, "房租收入", value, text));
  EXPECT_EQ(value.ToDouble(), 2);
  accounts.Parameters().Item("ismx").Value = 0;
  host().ui().dialogs.push_back(look);
  Show(accounts, text, value);
  EXPECT_EQ(rows.size(), 5u);
}

TEST_P(PickerTest, AFieldWithoutStatementAsksTheServiceOfItsKey) {
  KvTxt field("kvTxt", 4);
  field.Caption = "  区域 ";
  field.Config.PickerKey = "sel_pdmsjzd";
  field.Config.ValueColumn = "ID";
  field.Config.DisplayColumn = "名称";
  host().context().Picker("sel_pdmsjzd")->Parameters().Item("Lx").Value = "所属区域";
  Variant value;
  std::string text;
  auto check = [&](const std::string& typed) {
    ASSERT_TRUE(host()
                    .guarded("CheckPicker",
                             [&] { host().context().CheckPicker(field, typed, value, text); })
                    .ok());
  };
  check("03");
  EXPECT_EQ(text + "=" + value.ToString(), "南城区=33");
  host().ui().answers.push_back(mrvk::msgbox::kOk);
  check("九城区");
  EXPECT_EQ(text + "=" + value.ToString(), "九城区=0");
  ASSERT_EQ(host().ui().shown.size(), 1u);
  EXPECT_EQ(host().ui().shown[0].prompt, "区域输入有误，请重新输入！");
}

TEST_P(PickerTest, TheRegistryGivesOneSharedServiceAKey) {
  for (const std::string& key : PickerRegistry::ServiceKeys()) {
    EXPECT_NE(host().context().Picker(key), nullptr) << key;
  }
  EXPECT_EQ(host().context().Picker("SelPdm"), host().context().Picker("selpdm"));
  EXPECT_EQ(host().context().Picker("no_such_key"), nullptr);
  // A field list key is no service: it is reached by the field's picker button.
  EXPECT_EQ(host().context().Picker("gy_wy"), nullptr);
  EXPECT_NE(PickerRegistry::FindFieldList("GY_WY"), nullptr);
}

MRVK_ON_BOTH_ENGINES(PickerTest);

}  // namespace
}  // namespace kvhost
