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

TEST_P(ProtocolTest, SqlIsReadOnly) {
  for (const char* q : {"delete from xt_menu", "update xt_menu set menuname='x'",
                        "select 1 from xt_menu; delete from xt_menu"}) {
    json a = Send({{"op", "sql"}, {"query", q}});
    EXPECT_FALSE(a["ok"].get<bool>()) << q;
    EXPECT_FALSE(a["error"].get<std::string>().empty());
  }
  json a = Send({{"op", "sql"}, {"query", "select count(*) from xt_menu where progID=870004"}});
  EXPECT_EQ(a["result"]["rows"][0][0], 1);
}

TEST_P(ProtocolTest, OpenRunsTheDocumentedCallOrderAndReportsEvents) {
  json a = Send({{"op", "open"}, {"class", "ProbeSheet"}, {"progID", 870004}, {"record", 0}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
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
  // Save asks for a name first.
  json a = Send({{"op", "call"}, {"screen", s}, {"method", "FileSave"}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  ASSERT_TRUE(a.contains("pending")) << a.dump();
  EXPECT_EQ(a["pending"]["kind"], "inputbox");
  EXPECT_EQ(a["pending"]["prompt"], "名称:");
  EXPECT_FALSE(a.contains("result"));
  // While the box waits, nothing else is taken.
  json refused = Send({{"op", "sql"}, {"query", "select 1 from xt_menu"}});
  EXPECT_FALSE(refused["ok"].get<bool>());
  EXPECT_NE(refused["error"].get<std::string>().find("answer"), std::string::npos);
  a = Send({{"op", "answer"}, {"value", "王'五"}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_EQ(a["result"], true);
  EXPECT_EQ(a["events"][0]["args"][0], "保存单据成功！");
  a = Send({{"op", "sql"}, {"query", "select 业主名称 from fwyz"}});
  EXPECT_EQ(a["result"]["rows"][0][0], "王'五");

  // Delete asks yes or no: no keeps the row, yes deletes it.
  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileDelete"}});
  ASSERT_EQ(a["pending"]["kind"], "msgbox");
  EXPECT_EQ(a["pending"]["flags"], 52);
  EXPECT_EQ(a["pending"]["title"], "删除");
  json bad = Send({{"op", "answer"}, {"value", "yes"}});
  EXPECT_FALSE(bad["ok"].get<bool>());
  a = Send({{"op", "answer"}, {"value", 7}});
  EXPECT_EQ(a["result"], false);
  EXPECT_EQ(Count(), "1");
  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileDelete"}});
  a = Send({{"op", "answer"}, {"value", 6}});
  EXPECT_EQ(a["result"], true);
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

TEST_P(ProtocolTest, CancellingAnInputBoxSavesNothing) {
  const int s = OpenProbe();
  Send({{"op", "call"}, {"screen", s}, {"method", "FileSave"}});
  json a = Send({{"op", "answer"}, {"value", nullptr}});
  EXPECT_EQ(a["result"], false);
  EXPECT_EQ(Count(), "0");
}

// One row per way a request is refused (parsing, fields, ops, screens, calls, gestures).
TEST_P(ProtocolTest, BadRequestsGetAClearErrorAndChangeNothing) {
  const int s = OpenProbe();
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
      {R"({"op":"call","screen":)" + std::to_string(s) + R"(,"method":"Explode"})",
       "unknown operation"},
      {R"({"op":"call","screen":)" + std::to_string(s) + R"(,"method":"Init"})", "host's own call"},
      {R"({"op":"call","screen":)" + std::to_string(s) + R"(,"method":"Find"})",
       "takes 1 argument"},
      {R"({"op":"call","screen":)" + std::to_string(s) +
           R"(,"method":"Find","args":[[[1],[2,3]]]})",
       "rectangular"},
      {R"({"op":"call","screen":)" + std::to_string(s) + R"(,"method":"Check"})",
       "Division by zero"},
      {R"({"op":"gesture","screen":)" + std::to_string(s) +
           R"(,"control":"kvTxt","index":7,"gesture":"type","text":"A"})",
       "no control"},
      {R"({"op":"gesture","dialog":true,"control":"Cmd","gesture":"click"})", "no dialog"},
      {R"({"op":"sql","query":"select nosuch from fwyz"})", "nosuch"},
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
    switch (rng() % (depth > 2 ? 5 : 7)) {
      case 0:
        return nullptr;
      case 1:
        return static_cast<int64_t>(rng()) - (1LL << 31);
      case 2:
        return std::string(rng() % 5, static_cast<char>('a' + rng() % 26));
      case 3:
        return (rng() % 2) == 0;
      case 4:
        return 0.5 * static_cast<double>(rng() % 100);
      case 5: {
        json arr = json::array();
        for (unsigned i = 0; i < rng() % 4; ++i) arr.push_back(self(depth + 1, self));
        return arr;
      }
      default: {
        json obj = json::object();
        obj["k"] = self(depth + 1, self);
        return obj;
      }
    }
  };
  const std::string before = Count();
  for (int i = 0; i < 400; ++i) {
    json req = json::object();
    if (rng() % 8) req["op"] = ops[rng() % ops.size()];
    // Never a real session switch or a save: the fuzz must leave the database alone.
    if (req.value("op", "") == "session") req["database"] = random_value(0, random_value);
    if (rng() % 2) req["screen"] = (rng() % 3) ? json(s) : random_value(0, random_value);
    if (rng() % 2) req["method"] = methods[rng() % methods.size()];
    if (rng() % 2) req["args"] = random_value(0, random_value);
    if (rng() % 3 == 0) req["class"] = random_value(0, random_value);
    if (rng() % 3 == 0) req["value"] = random_value(0, random_value);
    if (rng() % 3 == 0) req["query"] = random_value(0, random_value);
    if (rng() % 2) {
      req["control"] = controls[rng() % controls.size()];
      req["index"] = static_cast<int>(rng() % 5) - 1;
      req["gesture"] = gestures[rng() % gestures.size()];
      req["text"] = random_value(0, random_value);
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
             const std::string& text = "") {
  json g = {{"op", "gesture"}, {"screen", screen}, {"control", control}, {"gesture", gesture}};
  if (index >= 0) g["index"] = index;
  if (!text.empty()) g["text"] = text;
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
  json refusals[] = {
      Send(Gesture(s, "kvTxt", 3, "type", "X")), Send(Gesture(s, "kvTxt", 2, "pick", "按天")),
      Send(Gesture(s, "Chk", -1, "cell_edit")), Send(Gesture(s, "kvTxt", 9, "type", "X"))};
  const char* reasons[] = {"kvTxt(3) is locked", "is not an entry of kvTxt(2)",
                           "has no gesture \"cell_edit\"", "has no control \"kvTxt(9)\""};
  for (int i = 0; i < 4; ++i) {
    EXPECT_FALSE(refusals[i]["ok"].get<bool>());
    EXPECT_NE(refusals[i]["error"].get<std::string>().find(reasons[i]), std::string::npos)
        << refusals[i].dump();
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
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  EXPECT_EQ(a["pending"]["title"], "业主");
  EXPECT_EQ(ControlState(a["pending"]["dialog"]["controls"], "Cmd", 0)["caption"], "保存(&S)");

  // While the dialog is shown, the screen behind it takes nothing.
  json refused = Send(Gesture(s, "kvTxt", 0, "type", "X"));
  EXPECT_FALSE(refused["ok"].get<bool>());
  EXPECT_NE(refused["error"].get<std::string>().find("dialog"), std::string::npos);

  // Saving without a name: the dialog's own message box, then the dialog again.
  json save = Gesture(s, "Cmd", 0, "click");
  save["dialog"] = true;
  a = Send(save);
  ASSERT_EQ(a["pending"]["kind"], "msgbox") << a.dump();
  EXPECT_EQ(a["pending"]["prompt"], "姓名不能为空！");
  a = Send({{"op", "answer"}, {"value", 1}});
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();

  json type = Gesture(s, "kvTxt", 0, "type", "赵'六");
  type["dialog"] = true;
  a = Send(type);
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_EQ(ControlState(a["pending"]["dialog"]["controls"], "kvTxt", 0)["text"], "赵'六");
  json locked = Gesture(s, "kvTxt", 5, "type", "x");
  locked["dialog"] = true;
  a = Send(locked);
  EXPECT_FALSE(a["ok"].get<bool>());
  EXPECT_EQ(a["pending"]["kind"], "dialog");  // still shown after a refused gesture

  a = Send(save);
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
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  const int s = a["result"].get<int>();
  a = Send({{"op", "call"}, {"screen", s}, {"method", "FileNew"}});
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  json type = Gesture(s, "kvTxt", 0, "type", "Y01");
  type["dialog"] = true;
  Send(type);
  // Saving without a name: the check sends the person to the name, not to the button.
  json save = Gesture(s, "Cmd", 0, "click");
  save["dialog"] = true;
  a = Send(save);
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  ASSERT_EQ(a["events"].size(), 1u) << a.dump();
  EXPECT_EQ(a["events"][0]["args"][0], "没有具体的姓名,请录入!");
  const json& controls = a["pending"]["dialog"]["controls"];
  EXPECT_EQ(ControlState(controls, "kvTxt", 1)["focus"], true) << controls.dump();
  EXPECT_FALSE(ControlState(controls, "Cmd", 0).contains("focus"));
  Send({{"op", "answer"}, {"value", nullptr}});
}

MRVK_ON_BOTH_ENGINES(ProtocolTest);

}  // namespace
}  // namespace kvhost
