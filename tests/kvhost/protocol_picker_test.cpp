// A picker through the screen protocol, as a front end drives it: a field's pick gesture
// shows the list as pending of kind "picker" with its columns and rows, which is worked on by
// gestures on the dialog and answered with the chosen row indexes or null. Both engines.
#include <gtest/gtest.h>

#include "kvhost/protocol.h"
#include "support/engines.h"

namespace kvhost {
namespace {

using nlohmann::json;

class ProtocolPickerTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (7,'W02','东方花园')");
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (8,'W01','O''Hara 公寓')");
    json a = Send({{"op", "session"}, {"database", url()}, {"user", "张三"}});
    ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
    a = Send({{"op", "open"}, {"class", "PDMLy"}, {"progID", 870001}, {"record", 0}});
    ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
    screen_ = a["result"].get<int>();
    a = Send({{"op", "call"}, {"screen", screen_}, {"method", "FileNew"}});
    ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  }
  json Send(const json& req) { return driver_.Handle(req); }
  json Pick() {
    return Send({{"op", "gesture"},
                 {"screen", screen_},
                 {"control", "kvTxt"},
                 {"index", 2},
                 {"gesture", "pick"}});
  }
  // The estate field's text and value as the screen's state gives them.
  std::pair<std::string, double> Field() {
    json a = Send({{"op", "state"}, {"screen", screen_}});
    for (const json& c : a["result"]["controls"]) {
      if (c["name"] == "kvTxt" && c["index"] == 2)
        return {c["text"].get<std::string>(), c["value"].get<double>()};
    }
    ADD_FAILURE() << "no kvTxt(2) in " << a.dump();
    return {};
  }
  static std::vector<std::string> Cells(const json& pending) {
    std::vector<std::string> out;
    for (const json& row : pending["dialog"]["rows"])
      out.push_back(std::to_string(row["index"].get<int>()) + ":" +
                    row["cells"][0].get<std::string>() + "|" + row["cells"][1].get<std::string>());
    return out;
  }

  ProtocolDriver driver_;
  int screen_ = 0;
};

TEST_P(ProtocolPickerTest, APickShowsTheRowsAndAnIndexChoosesOne) {
  json a = Pick();
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  ASSERT_TRUE(a.contains("pending")) << a.dump();
  const json& p = a["pending"];
  EXPECT_EQ(p["kind"], "picker");
  EXPECT_EQ(p["title"], "物业");
  EXPECT_EQ(p["dialog"]["columns"], json::array({"物业编号", "物业名称"}));
  EXPECT_EQ(Cells(p), (std::vector<std::string>{"0:W01|O'Hara 公寓", "1:W02|东方花园"}));
  EXPECT_EQ(p["dialog"]["count"], 2);
  EXPECT_EQ(p["dialog"]["current"], 0);
  EXPECT_EQ(p["dialog"]["multiple"], false);

  // Answers that are no row of the list are refused; the list stays.
  for (const json& bad : {json::array({5}), json::array({0, 1}), json("W01"), json::array({-1})}) {
    a = Send({{"op", "answer"}, {"value", bad}});
    EXPECT_FALSE(a["ok"].get<bool>()) << bad.dump() << " " << a.dump();
    ASSERT_TRUE(a.contains("pending")) << bad.dump() << " " << a.dump();
    EXPECT_EQ(a["pending"]["kind"], "picker");
  }
  // The screen behind waits.
  a = Send({{"op", "state"}, {"screen", screen_}});
  EXPECT_FALSE(a["ok"].get<bool>());

  a = Send({{"op", "answer"}, {"value", json::array({1})}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_FALSE(a.contains("pending"));
  EXPECT_EQ(Field(), std::make_pair(std::string("东方花园"), 7.0));
}

TEST_P(ProtocolPickerTest, TheFindBoxNarrowsTheRowsAndNullCancels) {
  json a = Pick();
  ASSERT_EQ(a["pending"]["kind"], "picker") << a.dump();
  a = Send({{"op", "gesture"},
            {"dialog", true},
            {"control", "txtFind"},
            {"gesture", "type"},
            {"text", "o'h"}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_EQ(Cells(a["pending"]), (std::vector<std::string>{"0:W01|O'Hara 公寓"}));
  EXPECT_EQ(a["pending"]["dialog"]["count"], 1);

  a = Send({{"op", "answer"}, {"value", nullptr}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_FALSE(a.contains("pending"));
  EXPECT_EQ(Field(), std::make_pair(std::string(""), 0.0));

  // Confirmed by the dialog's own button after a double click moved the cursor.
  a = Pick();
  a = Send({{"op", "gesture"},
            {"dialog", true},
            {"control", "Vs"},
            {"gesture", "cell_dblclick"},
            {"row", 2},
            {"col", 1}});
  ASSERT_TRUE(a["ok"].get<bool>()) << a.dump();
  EXPECT_FALSE(a.contains("pending")) << a.dump();
  EXPECT_EQ(Field(), std::make_pair(std::string("东方花园"), 7.0));
}

MRVK_ON_BOTH_ENGINES(ProtocolPickerTest);

}  // namespace
}  // namespace kvhost
