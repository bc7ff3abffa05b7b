// `mrvk init-db` then `mrvk drive`, as a script would run them, on both engines.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "app/commands.h"
#include "kvhost/protocol.h"
#include "support/engines.h"

namespace {

using nlohmann::json;

class DriveCommandTest : public kvtest::EngineTest {};

TEST_P(DriveCommandTest, InitDbThenDriveAnswersTheOwnersEntry) {
  std::ostringstream out, err;
  // Twice: creating the schema again changes nothing and succeeds.
  ASSERT_EQ(mrvk_app::RunInitDb({"--database", url()}, out, err), 0) << err.str();
  ASSERT_EQ(mrvk_app::RunInitDb({"--database", url()}, out, err), 0) << err.str();
  EXPECT_EQ(Scalar("select count(*) from xt_menu where progID=870004"), "1");

  std::istringstream in(
      json({{"op", "session"}, {"database", url()}}).dump() + "\n\n" +
      R"({"op":"sql","query":"select top 1 menuname from xt_menu where progID=870004"})"
      "\n"
      R"({"op":"sql","query":"select 1","x":)" +
      std::string(300000, '[') + std::string(300000, ']') + "}\n" + R"({"op":"sql","query":")" +
      std::string(kvhost::kMaxRequestBytes, 'x') +
      "\"}\n"
      "garbage\n");
  std::ostringstream answers;
  ASSERT_EQ(mrvk_app::RunDrive({}, in, answers, err), 0);
  std::istringstream lines(answers.str());
  std::string line;
  std::vector<json> got;
  while (std::getline(lines, line)) got.push_back(json::parse(line));
  ASSERT_EQ(got.size(), 5u);  // the blank line gets no answer
  EXPECT_EQ(got[0]["result"]["driver"], is_pg() ? "postgresql" : "jet");
  EXPECT_EQ(got[1]["result"]["rows"][0][0], "业主信息");
  EXPECT_EQ(got[2]["error"], "the request nests arrays and objects deeper than 64 levels");
  EXPECT_EQ(got[3]["error"], "the request is larger than 1048576 bytes");
  EXPECT_EQ(got[4]["ok"], false);
}

// A field's picker through `mrvk drive`: the list waits as pending, a row index answers it.
TEST_P(DriveCommandTest, APickedEstateIsChosenByItsRowIndex) {
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (7,'W1','阳光花园')");
  std::string script;
  for (const json& req :
       {json{{"op", "session"}, {"database", url()}},
        json{{"op", "open"}, {"class", "PDMLy"}, {"progID", 870001}, {"record", 0}},
        json{{"op", "call"}, {"screen", 1}, {"method", "FileNew"}},
        json{{"op", "gesture"},
             {"screen", 1},
             {"control", "kvTxt"},
             {"index", 2},
             {"gesture", "pick"}},
        json{{"op", "answer"}, {"value", json::array({0})}}})
    script += req.dump() + "\n";
  std::istringstream in(script);
  std::ostringstream answers, err;
  ASSERT_EQ(mrvk_app::RunDrive({}, in, answers, err), 0) << err.str();
  std::istringstream lines(answers.str());
  std::string line;
  std::vector<json> got;
  while (std::getline(lines, line)) got.push_back(json::parse(line));
  ASSERT_EQ(got.size(), 5u) << answers.str();
  ASSERT_EQ(got[1]["result"], 1) << got[1].dump();
  EXPECT_EQ(got[3]["pending"]["kind"], "picker") << got[3].dump();
  EXPECT_EQ(got[3]["pending"]["dialog"]["rows"][0]["cells"], json::array({"W1", "阳光花园"}));
  EXPECT_TRUE(got[4]["ok"].get<bool>()) << got[4].dump();
  EXPECT_FALSE(got[4].contains("pending"));
}

MRVK_ON_BOTH_ENGINES(DriveCommandTest);

TEST(InitDbCommand, RejectsUnknownArgumentsAndBadUrls) {
  std::ostringstream out, err;
  EXPECT_EQ(mrvk_app::RunInitDb({"--frobnicate"}, out, err), 2);
  EXPECT_NE(err.str().find("unknown argument"), std::string::npos);
  err.str("");
  EXPECT_EQ(mrvk_app::RunInitDb({"--database", "nosuch://db"}, out, err), 1);
  EXPECT_NE(err.str().find("unknown database URL"), std::string::npos);
  std::istringstream in;
  EXPECT_EQ(mrvk_app::RunDrive({"--x"}, in, out, err), 2);
}

}  // namespace
