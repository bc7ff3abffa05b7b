// A clerk's day on the owners' list through the screen protocol, as `mrvk drive` and the web
// client speak it: open, new through the entry dialog, a refused duplicate, edit, find,
// delete with its question, on both engines.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "kvhost/protocol.h"
#include "support/engines.h"

namespace mrvk {
namespace {

using nlohmann::json;

class ListSheetProtocolTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    json a = Send(
        {{"op", "session"}, {"database", url()}, {"user", "张三"}, {"login_date", "2012-10-11"}});
    ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  }
  json Send(const json& req) { return driver_.Handle(req); }
  json Call(int screen, const std::string& method, json args = json::array()) {
    return Send({{"op", "call"}, {"screen", screen}, {"method", method}, {"args", args}});
  }
  // A gesture on the shown dialog.
  json OnDialog(const std::string& control, int index, const std::string& gesture,
                const std::string& text = "") {
    return Send({{"op", "gesture"},
                 {"dialog", true},
                 {"control", control},
                 {"index", index},
                 {"gesture", gesture},
                 {"text", text}});
  }
  json Rows(const std::string& sql) {
    json a = Send({{"op", "sql"}, {"query", sql}});
    EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
    return a["result"]["rows"];
  }

  kvhost::ProtocolDriver driver_;
};

TEST_P(ListSheetProtocolTest, AClerksDayOnTheOwnersList) {
  json a = Send({{"op", "open"}, {"class", "PDMYz"}, {"progID", 870004}, {"record", 0}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  const int s = a["result"].get<int>();

  // New: the entry dialog waits; typed into and saved, it closes.
  a = Call(s, "FileNew");
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  EXPECT_EQ(a["pending"]["title"], "业主信息");
  OnDialog("kvTxt", 0, "type", "Y01");
  OnDialog("kvTxt", 1, "type", "王'五");
  OnDialog("optXB", 1, "click");
  a = OnDialog("Cmd", 0, "click");
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_FALSE(a.contains("pending")) << a.dump();
  EXPECT_EQ(Rows("select 业主编号,业主名称,性别,类型 from fwyz"),
            json::array({json::array({"Y01", "王'五", "女", 0})}));

  // A second owner with the same code: the report comes as an event, the dialog stays.
  a = Call(s, "FileNew");
  OnDialog("kvTxt", 0, "type", "Y01");
  OnDialog("kvTxt", 1, "type", "赵六");
  a = OnDialog("Cmd", 0, "click");
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  ASSERT_EQ(a["events"].size(), 1u) << a.dump();
  EXPECT_EQ(a["events"][0]["name"], "ErrMessage");
  EXPECT_EQ(a["events"][0]["args"], json::array({"编号重复,请检查!", 2, "提示："}));
  OnDialog("kvTxt", 0, "type", "Y02");
  a = OnDialog("Cmd", 0, "click");
  EXPECT_FALSE(a.contains("pending")) << a.dump();

  // Find the second by name, edit its telephone.
  a = Call(s, "Find", json::array({nullptr}));
  ASSERT_EQ(a["pending"]["kind"], "inputbox") << a.dump();
  a = Send({{"op", "answer"}, {"value", "赵"}});
  EXPECT_EQ(a["result"], true) << a.dump();
  a = Call(s, "FileEdit");
  ASSERT_EQ(a["pending"]["kind"], "dialog") << a.dump();
  OnDialog("kvTxt", 2, "type", "139");
  a = OnDialog("Cmd", 0, "click");
  EXPECT_FALSE(a.contains("pending")) << a.dump();
  EXPECT_EQ(Rows("select 电话 from fwyz where 业主编号='Y02'"),
            json::array({json::array({"139"})}));

  // The sheet does not print itself; the host prints its grid as a page, once asked right.
  a = Send({{"op", "print_grid"}, {"screen", s}, {"control", "Vs"}, {"title", "业主信息"}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  ASSERT_EQ(a["documents"].size(), 1u) << a.dump();
  EXPECT_EQ(a["documents"][0]["title"], "业主信息");
  EXPECT_EQ(a["documents"][0]["direct"], false);
  {
    std::ifstream in(a["documents"][0]["path"].get<std::string>());
    const std::string page((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_NE(page.find(">Y02</td><td class=\"l\">赵六</td>"), std::string::npos) << page;
    EXPECT_EQ(page.find("业主ID"), std::string::npos);  // the hidden ID column stays out
  }
  for (const json& bad :
       {json{{"op", "print_grid"}, {"screen", s}, {"control", "Nope"}},
        json{{"op", "print_grid"}, {"screen", s}, {"control", "Vs"}, {"direct", "yes"}}}) {
    a = Send(bad);
    EXPECT_FALSE(a["ok"].get<bool>()) << bad.dump();
    EXPECT_FALSE(a.contains("documents"));
  }
  EXPECT_EQ(Send({{"op", "print_grid"}, {"screen", s}, {"control", "Nope"}})["error"],
            "PDMYz has no control Nope");

  // Delete the first: the question, then it is gone.
  a = Send({{"op", "gesture"},
            {"screen", s},
            {"control", "Vs"},
            {"gesture", "cell_click"},
            {"row", 1},
            {"col", 1}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  a = Call(s, "FileDelete");
  ASSERT_EQ(a["pending"]["kind"], "msgbox") << a.dump();
  EXPECT_EQ(a["pending"]["prompt"], "是否删除当前行记录");
  a = Send({{"op", "answer"}, {"value", 6}});
  EXPECT_EQ(a["result"], true) << a.dump();
  EXPECT_EQ(Rows("select 业主编号 from fwyz"), json::array({json::array({"Y02"})}));

  a = Send({{"op", "close"}, {"screen", s}});
  EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
}

MRVK_ON_BOTH_ENGINES(ListSheetProtocolTest);

}  // namespace
}  // namespace mrvk
