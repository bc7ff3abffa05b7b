// The validity tools of a housing unit, run as the host runs them on the unit in hand, on
// both engines: each case sets up a unit with its rooms and contracts, runs the tools in turn
// and reads back the boxes the clerk saw, the tools' answers and what the database holds.
#include "mrvk/housing/fwfy_tools.h"

#include <gtest/gtest.h>

#include "mrvk/frame/vb.h"
#include "support/engines.h"

namespace mrvk {
namespace {

constexpr int32_t kFinish = 870503;
constexpr int32_t kUnfinish = 870504;

const std::string kWithdrawn = "该房源已设置为[已失效]状态！|64|提示：";
const std::string kBroughtBack = "该房源已设置为[未出租]状态！|64|提示：";
const std::string kInForce =
    "该房源，还有未终止的租房合同，请先将租房合同终止，再来设置房源失效!|48|操作提示";
const std::string kAlreadyWithdrawn = "该房源已设置失效,不能再次设置!|64|操作提示";
const std::string kNotWithdrawn = "该房源已设置未失效,不能再次设置!|64|操作提示";

class FwFyToolsTest : public kvtest::EngineTest {
 protected:
  // Runs the tool on the unit; its answer, and the box it showed as "prompt|flags|title".
  struct Run {
    bool result;
    std::string box;
  };
  Run RunTool(const char* cls, int32_t prog, int32_t unit) {
    const size_t before = host().ui().shown.size();
    host().ui().answers = {msgbox::kOk};
    bool result = false;
    kvhost::Status st = host().run_tool(cls, prog, unit, /*action=*/0, result);
    EXPECT_TRUE(st.ok()) << cls << ": " << st.message();
    EXPECT_EQ(host().ui().shown.size(), before + 1) << cls << " shows one box";
    if (host().ui().shown.size() <= before) return {result, ""};
    const kvhost::ShownBox& box = host().ui().shown.back();
    return {result, box.prompt + "|" + std::to_string(box.flags) + "|" + box.title};
  }
  Run Finish(int32_t unit) { return RunTool("cFwFy_finish", kFinish, unit); }
  Run Unfinish(int32_t unit) { return RunTool("cFwFy_unfinish", kUnfinish, unit); }

  void AddUnit(int id, const std::string& state) {
    Exec("insert into fwfy (房源ID,房源编号,出租状态) values (" + std::to_string(id) + ",'F" +
         std::to_string(id) + "','" + state + "')");
  }
  void AddRoom(int id, int unit, const std::string& number, int let) {
    Exec("insert into fwfy_fz (AutoID,房源ID,房间号,是否出租) values (" + std::to_string(id) + "," +
         std::to_string(unit) + ",'" + number + "'," + std::to_string(let) + ")");
  }
  void AddContract(int id, int unit, const std::string& smark, const std::string& state) {
    Exec("insert into fwhd (合同ID,合同编号,smark,状态) values (" + std::to_string(id) + ",'HT" +
         std::to_string(id) + "','" + smark + "','" + state + "')");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (" + std::to_string(id) + "," +
         std::to_string(id) + "," + std::to_string(unit) + ")");
  }
  std::string State(int unit) {
    return Scalar("select 出租状态 from fwfy where 房源ID=" + std::to_string(unit));
  }
};

TEST_P(FwFyToolsTest, WithdrawingIsRefusedWhileAContractIsInForceOrTheUnitIsWithdrawnAlready) {
  struct Case {
    const char* name;
    std::string smark, contract_state;  // the unit's one contract; "" for none
    std::string state_before;
    bool withdrawn;
    std::string box;
  };
  const std::vector<Case> cases = {
      {"no contract", "", "", "未出租", true, kWithdrawn},
      {"only an unapproved contract", "01", "未生效", "未出租", true, kWithdrawn},
      {"a contract in force", "02", "生效", "已出租", false, kInForce},
      {"an ended contract", "02", "终止", "未出租", true, kWithdrawn},
      {"a finished contract", "02", "完成", "未出租", true, kWithdrawn},
      {"withdrawn already", "", "", "已失效", false, kAlreadyWithdrawn},
  };
  int unit = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ++unit;
    AddUnit(unit, c.state_before);
    if (!c.smark.empty()) AddContract(unit, unit, c.smark, c.contract_state);
    const Run run = Finish(unit);
    EXPECT_EQ(run.box, c.box);
    EXPECT_EQ(run.result, c.withdrawn);
    EXPECT_EQ(State(unit), c.withdrawn ? "已失效" : c.state_before);
  }
  // Only the unit in hand is written.
  EXPECT_EQ(Query("select 出租状态 from fwfy order by 房源ID"),
            (std::vector<std::string>{"已失效", "已失效", "已出租", "已失效", "已失效", "已失效"}));
  EXPECT_FALSE(db().InTransaction());
}

TEST_P(FwFyToolsTest, AUnitIsWithdrawnOnceItsContractIsEndedAndOnlyOnce) {
  AddUnit(1, "已出租");
  AddRoom(11, 1, "A", 1);
  AddContract(5, 1, "02", "生效");
  EXPECT_EQ(Finish(1).box, kInForce);
  EXPECT_EQ(State(1), "已出租");

  Exec("update fwhd set 状态='终止' where 合同ID=5");
  Run run = Finish(1);
  EXPECT_TRUE(run.result);
  EXPECT_EQ(run.box, kWithdrawn);
  EXPECT_EQ(State(1), "已失效");

  run = Finish(1);
  EXPECT_FALSE(run.result);
  EXPECT_EQ(run.box, kAlreadyWithdrawn);
  // Neither look at the rooms.
  EXPECT_EQ(Scalar("select 是否出租 from fwfy_fz where AutoID=11"), "1");
}

TEST_P(FwFyToolsTest, BringingBackGivesUnletWhateverTheRoomsAndOnlyForAWithdrawnUnit) {
  AddUnit(1, "已失效");
  AddRoom(11, 1, "A", 1);
  AddRoom(12, 1, "B", 0);
  Run run = Unfinish(1);
  EXPECT_TRUE(run.result);
  EXPECT_EQ(run.box, kBroughtBack);
  EXPECT_EQ(State(1), "未出租");
  EXPECT_EQ(Query("select 是否出租 from fwfy_fz order by AutoID"),
            (std::vector<std::string>{"1", "0"}));

  // Not withdrawn (now, or never): refused, nothing written.
  AddUnit(2, "部分出租");
  for (int unit : {1, 2}) {
    run = Unfinish(unit);
    EXPECT_FALSE(run.result) << unit;
    EXPECT_EQ(run.box, kNotWithdrawn) << unit;
  }
  EXPECT_EQ(State(2), "部分出租");

  // An ID no row bears passes the test; the update touches nothing and still reports success.
  run = Unfinish(999);
  EXPECT_TRUE(run.result);
  EXPECT_EQ(run.box, kBroughtBack);
  EXPECT_EQ(Scalar("select count(*) from fwfy"), "2");
  EXPECT_EQ(Query("select 出租状态 from fwfy order by 房源ID"),
            (std::vector<std::string>{"未出租", "部分出租"}));
}

TEST_P(FwFyToolsTest, AFailedWriteShowsItsTextBehindTheToolsPrefixAndAnswersFalse) {
  Exec("drop table fwfy");
  for (const auto& [cls, prefix] :
       {std::pair{"cFwFy_finish", std::string("设置失效出错::")},
        std::pair{"cFwFy_unfinish", std::string("取消设置失效出错::")}}) {
    const Run run = RunTool(cls, 0, 1);
    EXPECT_FALSE(run.result) << cls;
    ASSERT_GT(run.box.size(), prefix.size()) << cls;
    EXPECT_EQ(run.box.substr(0, prefix.size()), prefix) << cls;
    // The database's text follows the prefix; the box has the critical icon and the
    // application's title.
    EXPECT_NE(run.box.find("fwfy"), std::string::npos) << run.box;
    EXPECT_EQ(run.box.substr(run.box.size() - std::string("|16|房屋租赁管理").size()),
              "|16|房屋租赁管理")
        << cls;
  }
  EXPECT_FALSE(db().InTransaction());
}

MRVK_ON_BOTH_ENGINES(FwFyToolsTest);

}  // namespace
}  // namespace mrvk
