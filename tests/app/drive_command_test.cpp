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
