// The screen protocol, driven as a front end drives it, on both engines.
#include "kvhost/protocol.h"

#include <gtest/gtest.h>

#include <random>

#include "support/engines.h"
#include "support/probe_sheet.h"

namespace kvhost {
namespace {

using nlohmann::json;

class ProtocolTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    kvtest::RegisterProbeSheet();
    json a = Send(
        {{"op", "session"}, {"database", url()}, {"user", "张三"}, {"login_date", "2012-10-11"}});
    ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  }
  json Send(const json& req) { return driver_.Handle(req); }
  json SendLine(const std::string& line) { return json::parse(driver_.HandleLine(line)); }
  int OpenProbe(int record = 0) {
    json a =
        Send({{"op", "open"}, {"class", "ProbeSheet"}, {"progID", 870004}, {"record", record}});
    EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
    return a["result"].get<int>();
  }
  std::string Count() {
    json a = Send({{"op", "sql"}, {"query", "select count(*) from fwyz"}});
    EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
    return a["result"]["rows"][0][0].dump();
  }

  ProtocolDriver driver_;
};

TEST_P(ProtocolTest, OpenRunsTheDocumentedCallOrderAndReportsEvents) {
  json a = Send({{"op", "open"}, {"class", "ProbeSheet"}, {"progID", 870004}, {"record", 0}});
  const int s = a["result"].get<int>();
  ASSERT_EQ(a["events"].size(), 1u);
  EXPECT_EQ(a["events"][0]["name"], "FormRefreshed");
  EXPECT_EQ(a["events"][0]["id"], 3);
  EXPECT_EQ(a["events"][0]["screen"], s);
  a = Send({{"op", "call"}, {"screen", s}, {"method", "ReturnPrintName"}});
  EXPECT_EQ(a["result"], "Init Refresh DoGetFormStatus ");
  a = Send({{"op", "call"}, {"screen", s}, {"method", "Attributes"}, {"args", {98}}});
  EXPECT_EQ(a["result"], "check");
  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileNewNext"}});
  EXPECT_EQ(a["result"], false);
  EXPECT_EQ(a["events"][0]["args"][0], "无此功能！");
}

TEST_P(ProtocolTest, AMessageBoxWaitsForItsAnswer) {
  const int s = OpenProbe();
  // Save asks for a name first; a cancelled box saves nothing.
  const json save = {{"op", "call"}, {"screen", s}, {"method", "FileSave"}};
  EXPECT_EQ(Send(save)["pending"]["kind"], "inputbox");
  EXPECT_EQ(Send({{"op", "answer"}, {"value", nullptr}})["result"], false);
  EXPECT_EQ(Count(), "0");
  json a = Send(save);
  ASSERT_TRUE(a.contains("pending")) << a.dump();
  EXPECT_EQ(a["pending"]["prompt"], "名称:");
  EXPECT_FALSE(a.contains("result"));
  // While the box waits, nothing else is taken.
  json refused = Send({{"op", "sql"}, {"query", "select 1 from xt_menu"}});
  EXPECT_FALSE(refused["ok"].get<bool>());
  EXPECT_NE(refused["error"].get<std::string>().find("answer"), std::string::npos);
  a = Send({{"op", "answer"}, {"value", "王'五"}});
  EXPECT_EQ(a["result"], true);
  EXPECT_EQ(a["events"][0]["args"][0], "保存单据成功！");
  a = Send({{"op", "sql"}, {"query", "select 业主名称 from fwyz"}});
  EXPECT_EQ(a["result"]["rows"][0][0], "王'五");

  // A message box takes only its buttons' numbers; yes deletes the row.
  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileDelete"}});
  ASSERT_EQ(a["pending"]["kind"], "msgbox");
  EXPECT_EQ(a["pending"]["title"], "删除");
  EXPECT_FALSE(Send({{"op", "answer"}, {"value", "yes"}})["ok"].get<bool>());
  EXPECT_EQ(Send({{"op", "answer"}, {"value", 6}})["result"], true);
  EXPECT_EQ(Count(), "0");
}

TEST_P(ProtocolTest, NoLockIsHeldWhileABoxWaitsAndWritesStandWhenTheCallEnds) {
  const int s = OpenProbe();
  json a = Send({{"op", "call"}, {"screen", s}, {"method", "FileEdit"}});
  ASSERT_EQ(a["pending"]["prompt"], "继续？") << a.dump();
  // Another clerk can save while the question waits, and already sees the row written.
  auto other = NewHost();
  EXPECT_TRUE(other->database().Execute(
      "insert into fwyz (业主ID,业主编号,业主名称,类型) values (90001,'O1','别人',1)"))
      << other->database().Error().Description();
  db::ResultSet rs;
  ASSERT_TRUE(other->database().Query("select count(*) from fwyz", rs));
  EXPECT_EQ(rs.values[0].ToString(), "2");
  a = Send({{"op", "answer"}, {"value", 6}});
  EXPECT_EQ(a["result"], true);
  EXPECT_EQ(Count(), "2");
}

// One row per way a request is refused (parsing, fields, ops, screens, calls, gestures, sql).
TEST_P(ProtocolTest, BadRequestsGetAClearErrorAndChangeNothing) {
  const int s = OpenProbe();
  const std::string on_s = R"(,"screen":)" + std::to_string(s) + ",";
  struct Case {
    std::string line;
    std::string error_part;
  } cases[] = {
      {"not json", "not JSON"},
      {R"({"x":1})", "missing field \"op\""},
      {R"({"op":7})", "wrong type"},
      {R"({"op":"launch"})", "unknown op"},
      {R"({"op":"answer","value":6})", "nothing is waiting"},
      {R"({"op":"open","class":"NoSuchClass"})", "unknown class"},
      {R"({"op":"open","class":"RPT_HT_List","progID":870401})", "not built yet"},
      {R"({"op":"open","class":"FrmYz"})", "dialog"},
      {R"({"op":"open","class":"ProbeSheet","progID":999})", "refused"},
      {R"({"op":"open","class":"ProbeSheet","progID":99999999999})", "wrong type"},
      {R"({"op":"call","screen":42,"method":"FileNew"})", "no open screen 42"},
      {R"({"op":"call")" + on_s + R"("method":"Explode"})", "unknown operation"},
      {R"({"op":"call")" + on_s + R"("method":"Init"})", "host's own call"},
      {R"({"op":"call")" + on_s + R"("method":"Find"})", "takes 1 argument"},
      {R"({"op":"call")" + on_s + R"("method":"Find","args":[[[1],[2,3]]]})", "rectangular"},
      {R"({"op":"call")" + on_s + R"("method":"Check"})", "Division by zero"},
      {R"({"op":"gesture")" + on_s + R"("control":"kvTxt","index":7,"gesture":"type"})",
       "no control"},
      {R"({"op":"gesture","dialog":true,"control":"Cmd","gesture":"click"})", "no dialog"},
      {R"({"op":"sql","query":"select nosuch from fwyz"})", "nosuch"},
      {R"({"op":"sql","query":"delete from fwyz"})", "SELECT"},
      {R"({"op":"sql","query":"update xt_menu set menuname='x'"})", "SELECT"},
      {R"({"op":"sql","query":"select 1 from xt_menu; delete from xt_menu"})", "one statement"},
      {R"({"op":"session","database":"mysql://x"})", "unknown database URL"},
  };
  for (const auto& c : cases) {
    json a = SendLine(c.line);
    ASSERT_FALSE(a["ok"].get<bool>()) << c.line;
    EXPECT_NE(a["error"].get<std::string>().find(c.error_part), std::string::npos)
        << c.line << " -> " << a["error"];
  }
  // The session and its screen are still there.
  json a = Send({{"op", "call"}, {"screen", s}, {"method", "GetID"}});
  EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_EQ(Count(), "0");
}

// A condition row as the find dialog sends it, on both planes.
json Conditions(const std::string& value, const std::string& field, const std::string& op) {
  const json row = json::array({value, field, op});
  return json::array({json::array({row}), json::array({row})});
}

TEST_P(ProtocolTest, FindOffersAndTakesTheDeclaredFieldsOnly) {
  const int s = OpenProbe();
  json a = Send({{"op", "state"}, {"screen", s}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  const json text_ops = json::array({"=", "<>", ">", ">=", "<", "<=", "like"});
  const json other_ops = json::array({"=", "<>", ">", ">=", "<", "<="});
  EXPECT_EQ(a["result"]["search_fields"],
            json::array({{{"caption", "名称"}, {"type", "text"}, {"operators", text_ops}},
                         {{"caption", "编号"}, {"type", "text"}, {"operators", text_ops}},
                         {{"caption", "类型"}, {"type", "number"}, {"operators", other_ops}},
                         {{"caption", "合同日期"}, {"type", "date"}, {"operators", other_ops}}}));

  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileSave"}});
  ASSERT_EQ(a["pending"]["kind"], "inputbox") << a.dump();
  a = Send({{"op", "answer"}, {"value", "O'Brien"}});
  ASSERT_EQ(a["result"], true) << a.dump();
  const std::string count = Count();

  // A text with a quote finds its row; a typed date is written in the engine's form.
  const struct {
    const char* method;
    json conditions;
    const char* names;
  } finds[] = {
      {"Find", Conditions("O'Brien", "名称", "="), "O'Brien;"},
      {"Filter", Conditions("Brien", "名称", "like"), "O'Brien;"},
      {"Find", Conditions("2012-1-5", "合同日期", "<"), ""},
  };
  for (const auto& f : finds) {
    a = Send({{"op", "call"}, {"screen", s}, {"method", f.method}, {"args", {f.conditions}}});
    ASSERT_EQ(a["result"], true) << a.dump();
    EXPECT_EQ(a["events"][0]["args"][0], f.names) << f.conditions;
  }

  // An undeclared field, a value that is no date, an unknown operator: refused before the
  // screen is called, so nothing runs.
  struct Case {
    json conditions;
    const char* error;
  } cases[] = {
      {Conditions("x", "1=0 union select pwhash from xt_user where username like", "="),
       "查找条件中的字段“1=0 union select pwhash from xt_user where username like”不在可查找的"
       "字段中"},
      {Conditions("2012-01-01# or 1=1 or 合同日期>#2012-01-01", "合同日期", ">"),
       "字段“合同日期”的值“2012-01-01# or 1=1 or 合同日期>#2012-01-01”不是日期"},
      {Conditions("0", "类型", "> 0 or 1=1 or A.类型>"),
       "查找条件中字段“类型”的运算符“> 0 or 1=1 or A.类型>”不可用，可用的有 = <> > >= < <="},
  };
  for (const Case& c : cases) {
    a = Send({{"op", "call"}, {"screen", s}, {"method", "Find"}, {"args", {c.conditions}}});
    ASSERT_FALSE(a["ok"].get<bool>()) << a.dump();
    EXPECT_EQ(a["error"], c.error);
    EXPECT_EQ(a["events"], json::array());
  }
  a = Send({{"op", "call"}, {"screen", s}, {"method", "ReturnPrintName"}});
  EXPECT_EQ(a["result"], "Init Refresh DoGetFormStatus Find Find Find ");
  EXPECT_EQ(Count(), count);
}

TEST_P(ProtocolTest, RandomRequestsNeverCrashOrChangeTheDatabase) {
  const int s = OpenProbe();
  std::mt19937 rng(20121011);
  const std::vector<std::string> ops = {"session", "open",  "call", "gesture", "answer", "state",
                                        "sql",     "close", "tool", "",        "x"};
  const std::vector<std::string> methods = {"FileNew", "FileEdit",   "Refresh", "Find", "GetID",
                                            "IsDirty", "Attributes", "Nope",    ""};
  const std::vector<std::string> controls = {"kvTxt", "Chk", "Cmd", "Nope", ""};
  const std::vector<std::string> gestures = {"type", "leave", "pick", "click", "toggle", "x"};
  auto random_value = [&](int depth, auto& self) -> json {
    const unsigned kind = rng() % (depth > 2 ? 5 : 7);
    if (kind == 0) return nullptr;
    if (kind == 1) return static_cast<int64_t>(rng()) - (1LL << 31);
    if (kind == 2) return std::string(rng() % 5, static_cast<char>('a' + rng() % 26));
    if (kind == 3) return (rng() % 2) == 0;
    if (kind == 4) return 0.5 * static_cast<double>(rng() % 100);
    if (kind == 6) return json{{"k", self(depth + 1, self)}};
    json arr = json::array();
    for (unsigned i = 0; i < rng() % 4; ++i) arr.push_back(self(depth + 1, self));
    return arr;
  };
  auto value = [&] { return random_value(0, random_value); };
  const std::string before = Count();
  for (int i = 0; i < 400; ++i) {
    json req = json::object();
    if (rng() % 8) req["op"] = ops[rng() % ops.size()];
    // Never a real session switch or a save: the fuzz must leave the database alone.
    if (req.value("op", "") == "session") req["database"] = value();
    if (rng() % 2) req["screen"] = (rng() % 3) ? json(s) : value();
    if (rng() % 2) req["method"] = methods[rng() % methods.size()];
    if (rng() % 2) req["args"] = value();
    if (rng() % 3 == 0) req["class"] = value();
    if (rng() % 3 == 0) req["value"] = value();
    if (rng() % 3 == 0) req["query"] = value();
    if (rng() % 2) {
      req["control"] = controls[rng() % controls.size()];
      req["index"] = static_cast<int>(rng() % 5) - 1;
      req["gesture"] = gestures[rng() % gestures.size()];
      req["text"] = value();
      // Gestures on the dialog may type and close but never press its save button.
      if (rng() % 2 && req["gesture"] != "click") req["dialog"] = true;
    }
    json a = Send(req);
    ASSERT_TRUE(a.is_object() && a.contains("ok")) << req.dump();
    // Boxes are cancelled (a message box by its cancel button), dialogs closed.
    for (int n = 0; a.contains("pending") && n < 5; ++n)
      a = Send({{"op", "answer"}, {"value", a["pending"]["kind"] == "msgbox" ? json(2) : json()}});
    ASSERT_FALSE(a.contains("pending")) << a.dump();
    if (!a["ok"].get<bool>()) {
      EXPECT_FALSE(a["error"].get<std::string>().empty()) << req.dump();
    }
  }
  // The fuzz may have closed the probe or opened others, but the database is as it was.
  json a = Send({{"op", "session"}, {"database", url()}});
  ASSERT_TRUE(a["ok"].get<bool>());
  EXPECT_EQ(Count(), before);
  a = Send({{"op", "sql"}, {"query", "select count(*) from xt_menu"}});
  EXPECT_GT(a["result"]["rows"][0][0].get<int>(), 30);
}

json Gesture(int screen, const std::string& control, int index, const std::string& gesture,
             const std::string& text = "", bool dialog = false) {
  json g = {{"op", "gesture"}, {"screen", screen}, {"control", control}, {"gesture", gesture}};
  if (index >= 0) g["index"] = index;
  if (!text.empty()) g["text"] = text;
  if (dialog) g["dialog"] = true;
  return g;
}

// The state of control `name`(index) in a screen's or dialog's control list.
json ControlState(const json& controls, const std::string& name, int index = -1) {
  for (const json& c : controls) {
    if (c["name"] == name && c.value("index", -1) == index) return c;
  }
  return json();
}

TEST_P(ProtocolTest, GesturesChangeWhatTheScreenShowsAndRefusalsChangeNothing) {
  const int s = OpenProbe();
  json a = Send(Gesture(s, "kvTxt", 0, "type", "A'01"));
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  Send(Gesture(s, "kvTxt", 1, "type", "2012-1-5"));
  Send(Gesture(s, "kvTxt", 1, "leave"));
  a = Send(Gesture(s, "kvTxt", 2, "pick", "按面积"));
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  Send(Gesture(s, "Chk", -1, "toggle"));

  // A locked field, an entry not in the list, a gesture a control does not take, and a
  // control the screen does not have: each a clear error.
  const std::pair<json, const char*> refusals[] = {
      {Gesture(s, "kvTxt", 3, "type", "X"), "kvTxt(3) is locked"},
      {Gesture(s, "kvTxt", 2, "pick", "按天"), "is not an entry of kvTxt(2)"},
      {Gesture(s, "Chk", -1, "cell_edit"), "has no gesture \"cell_edit\""},
      {Gesture(s, "kvTxt", 9, "type", "X"), "has no control \"kvTxt(9)\""}};
  for (const auto& [request, reason] : refusals) {
    a = Send(request);
    EXPECT_FALSE(a["ok"].get<bool>());
    EXPECT_NE(a["error"].get<std::string>().find(reason), std::string::npos) << a.dump();
  }

  a = Send({{"op", "state"}, {"screen", s}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  const json& controls = a["result"]["controls"];
  EXPECT_EQ(ControlState(controls, "kvTxt", 0)["text"], "A'01");
  EXPECT_EQ(ControlState(controls, "kvTxt", 1)["text"], "2012-01-05");  // reformatted on leave
  EXPECT_EQ(ControlState(controls, "kvTxt", 1)["kind"], "date");
  EXPECT_EQ(ControlState(controls, "kvTxt", 2)["text"], "按面积");
  EXPECT_EQ(ControlState(controls, "kvTxt", 2)["list"],
            json::array({"", "按户", "按面积", "按用量"}));
  EXPECT_EQ(ControlState(controls, "kvTxt", 3)["text"], "");
  EXPECT_EQ(ControlState(controls, "kvTxt", 3)["locked"], true);
  EXPECT_EQ(ControlState(controls, "Chk")["value"], 1);
  EXPECT_EQ(ControlState(controls, "Chk")["focus"], true);  // the last control worked, not refused
  EXPECT_EQ(a["result"]["IsDirty"], true);
}

TEST_P(ProtocolTest, AnEntryDialogIsWorkedOnUntilItCloses) {
  const int s = OpenProbe();
  json a = Send(Gesture(s, "Cmd", -1, "click"));
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  EXPECT_EQ(a["pending"]["title"], "业主");
  EXPECT_EQ(ControlState(a["pending"]["dialog"]["controls"], "Cmd", 0)["caption"], "保存(&S)");

  // While the dialog is shown, the screen behind it takes nothing.
  json refused = Send(Gesture(s, "kvTxt", 0, "type", "X"));
  EXPECT_FALSE(refused["ok"].get<bool>());
  EXPECT_NE(refused["error"].get<std::string>().find("dialog"), std::string::npos);

  a = Send(Gesture(s, "kvTxt", 0, "type", "赵'六", /*dialog=*/true));
  EXPECT_EQ(ControlState(a["pending"]["dialog"]["controls"], "kvTxt", 0)["text"], "赵'六");
  a = Send(Gesture(s, "kvTxt", 5, "type", "x", /*dialog=*/true));
  EXPECT_FALSE(a["ok"].get<bool>());
  EXPECT_EQ(a["pending"]["kind"], "dialog");  // still shown after a refused gesture

  a = Send(Gesture(s, "Cmd", 0, "click", "", /*dialog=*/true));
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_FALSE(a.contains("pending"));
  ASSERT_EQ(a["events"].size(), 1u) << a.dump();
  EXPECT_EQ(a["events"][0]["args"][0], "保存成功！");
  a = Send({{"op", "sql"}, {"query", "select 业主名称 from fwyz"}});
  EXPECT_EQ(a["result"]["rows"], json::array({json::array({"赵'六"})}));

  // Closing the dialog's window saves nothing.
  a = Send(Gesture(s, "Cmd", -1, "click"));
  ASSERT_EQ(a["pending"]["kind"], "dialog");
  a = Send({{"op", "answer"}, {"value", nullptr}});
  EXPECT_TRUE(a["ok"].get<bool>());
  EXPECT_FALSE(a.contains("pending"));
  EXPECT_EQ(Count(), "1");
  EXPECT_FALSE(Send({{"op", "state"}, {"dialog", true}})["ok"].get<bool>());
}

TEST_P(ProtocolTest, ACheckThatMovesTheFocusKeepsItAfterTheClick) {
  json a = Send({{"op", "open"}, {"class", "PDMYz"}, {"progID", 870004}});
  const int s = a["result"].get<int>();
  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileNew"}});
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  const json type = Gesture(s, "kvTxt", 0, "type", "Y01", /*dialog=*/true);
  Send(type);
  // Saving without a name: the check sends the person to the name, not to the button.
  const json save = Gesture(s, "Cmd", 0, "click", "", /*dialog=*/true);
  a = Send(save);
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  ASSERT_EQ(a["events"].size(), 1u) << a.dump();
  EXPECT_EQ(a["events"][0]["args"][0], "没有具体的姓名,请录入!");
  const json& controls = a["pending"]["dialog"]["controls"];
  EXPECT_EQ(ControlState(controls, "kvTxt", 1)["focus"], true) << controls.dump();
  EXPECT_FALSE(ControlState(controls, "Cmd", 0).contains("focus"));
  Send({{"op", "answer"}, {"value", nullptr}});
}

// A field's pick gesture shows the list as pending of kind "picker", worked on by gestures on
// the dialog and answered with the chosen row indexes or null.
TEST_P(ProtocolTest, APickerIsPendingUntilARowIsChosenOrItIsCancelled) {
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (7,'W02','东方花园')");
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (8,'W01','O''Hara 公寓')");
  json a = Send({{"op", "open"}, {"class", "PDMLy"}, {"progID", 870001}, {"record", 0}});
  const int s = a["result"].get<int>();
  ASSERT_TRUE(Send({{"op", "call"}, {"screen", s}, {"method", "FileNew"}})["ok"].get<bool>());
  auto cells = [](const json& pending) {
    std::vector<std::string> out;
    for (const json& row : pending["dialog"]["rows"])
      out.push_back(std::to_string(row["index"].get<int>()) + ":" +
                    row["cells"][0].get<std::string>() + "|" + row["cells"][1].get<std::string>());
    return out;
  };
  auto estate = [&] {
    const json c =
        ControlState(Send({{"op", "state"}, {"screen", s}})["result"]["controls"], "kvTxt", 2);
    return c["text"].get<std::string>() + "=" + c["value"].dump();
  };
  const json pick = Gesture(s, "kvTxt", 2, "pick");
  a = Send(pick);
  ASSERT_EQ(a["pending"]["kind"], "picker") << a.dump();
  const json& p = a["pending"];
  EXPECT_EQ(p["title"], "物业");
  EXPECT_EQ(p["dialog"]["columns"], json::array({"物业编号", "物业名称"}));
  EXPECT_EQ(cells(p), (std::vector<std::string>{"0:W01|O'Hara 公寓", "1:W02|东方花园"}));
  EXPECT_EQ(p["dialog"]["current"], 0);
  EXPECT_EQ(p["dialog"]["multiple"], false);
  EXPECT_EQ(p["dialog"]["find_box"], json({{"name", "txtFind"}}));
  // Answers that are no row of the list are refused; the list stays, the screen behind waits.
  for (const json& bad : {json::array({5}), json::array({0, 1}), json("W01"), json::array({-1})}) {
    a = Send({{"op", "answer"}, {"value", bad}});
    EXPECT_FALSE(a["ok"].get<bool>()) << bad.dump() << " " << a.dump();
    EXPECT_EQ(a["pending"]["kind"], "picker") << bad.dump();
  }
  EXPECT_FALSE(Send({{"op", "state"}, {"screen", s}})["ok"].get<bool>());
  a = Send({{"op", "answer"}, {"value", json::array({1})}});
  EXPECT_FALSE(a.contains("pending")) << a.dump();
  EXPECT_EQ(estate(), "东方花园=7.0");

  // The find box narrows the rows (letters without regard to case); the confirm button takes
  // the first row kept.
  Send(pick);
  a = Send(Gesture(s, "txtFind", -1, "type", "o'h", /*dialog=*/true));
  EXPECT_EQ(cells(a["pending"]), (std::vector<std::string>{"0:W01|O'Hara 公寓"}));
  EXPECT_EQ(a["pending"]["dialog"]["count"], 1);
  EXPECT_FALSE(Send(Gesture(s, "Cmd", 0, "click", "", /*dialog=*/true)).contains("pending"));
  EXPECT_EQ(estate(), "O'Hara 公寓=8.0");
  // Null cancels and leaves the field; a double click on a row chooses it.
  Send(pick);
  EXPECT_FALSE(Send({{"op", "answer"}, {"value", nullptr}}).contains("pending"));
  EXPECT_EQ(estate(), "O'Hara 公寓=8.0");
  Send(pick);
  json dbl = Gesture(s, "Vs", -1, "cell_dblclick", "", /*dialog=*/true);
  dbl["row"] = 2;
  dbl["col"] = 1;
  EXPECT_FALSE(Send(dbl).contains("pending"));
  EXPECT_EQ(estate(), "东方花园=7.0");
}

MRVK_ON_BOTH_ENGINES(ProtocolTest);

}  // namespace
}  // namespace kvhost
