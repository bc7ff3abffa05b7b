// The contract status tools, run as the host runs them on the contract in hand, on both
// engines: contracts, units and rooms set up by SQL, then the boxes the clerk saw, the tools'
// answers and the rows the database holds.
#include "mrvk/contract/fwhd_tools.h"

#include <gtest/gtest.h>

#include "mrvk/frame/vb.h"
#include "support/engines.h"

namespace mrvk {
namespace {

const std::string kEnded = "该合同已设置为[终止]状态！|64|提示：";
const std::string kInForce = "该合同已设置为[生效]状态！|64|提示：";
const std::string kNotApproved = "该合同未审核，不能设置终止|48|提示：";
const std::string kEndedAlready = "该合同已设置失效,不能再次设置!|64|操作提示";
const std::string kNotEnded = "该合同没有被设置为失效,不能取消设置!|64|操作提示";
const std::string kWithdrawn = "该房源已经设置为[已失效]，不能设置该合同状态！|64|操作提示";

class FwHdToolsTest : public kvtest::EngineTest {
 protected:
  struct Run {
    bool result;
    std::string box;  // "prompt|flags|title" of the one box shown
  };
  Run RunTool(const char* cls, int32_t contract) {
    const size_t before = host().ui().shown.size();
    host().ui().answers = {msgbox::kOk};
    bool result = false;
    kvhost::Status st = host().run_tool(cls, /*progID=*/0, contract, /*action=*/0, result);
    EXPECT_TRUE(st.ok()) << cls << ": " << st.message();
    EXPECT_EQ(host().ui().shown.size(), before + 1) << cls << " shows one box";
    if (host().ui().shown.size() <= before) return {result, ""};
    const kvhost::ShownBox& box = host().ui().shown.back();
    return {result, box.prompt + "|" + std::to_string(box.flags) + "|" + box.title};
  }
  Run Finish(int32_t contract) { return RunTool("cFwHd_finish", contract); }
  Run Unfinish(int32_t contract) { return RunTool("cFwHd_unfinish", contract); }

  // Unit 1 with rooms A and B; the rows as the last rental-state run left them.
  void AddUnit(const std::string& state, int room_a, int room_b) {
    Exec("insert into fwfy (房源ID,房源编号,出租状态) values (1,'F1','" + state + "')");
    Exec("insert into fwfy_fz (AutoID,房源ID,房间号,是否出租) values (11,1,'A'," +
         std::to_string(room_a) + ")");
    Exec("insert into fwfy_fz (AutoID,房源ID,房间号,是否出租) values (12,1,'B'," +
         std::to_string(room_b) + ")");
  }
  // A contract on unit 1, for the whole unit (room "") or a room, with two schedule rows.
  void AddContract(int id, const std::string& room, const std::string& smark,
                   const std::string& state) {
    const std::string n = std::to_string(id);
    Exec("insert into fwhd (合同ID,合同编号,smark,系统,状态,分租房间) values (" + n + ",'HT" + n +
         "','" + smark + "','审核','" + state + "','" + room + "')");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (" + n + "," + n + ",1)");
    for (const std::string& row :
         {"1," + n + ",'房租','2012-10-15',1", "2," + n + ",'房租','2013-01-15',0"})
      Exec("insert into fwhdfs_sk (AutoID,合同ID,费用名称,收款日期,是否已收) values (" + n + row +
           ")");
  }
  // The contract, the unit and its rooms: "smark|系统|状态", "出租状态", "A|B".
  std::vector<std::string> Rows(int contract) {
    const std::string n = std::to_string(contract);
    std::vector<std::string> rows = Query("select smark,系统,状态 from fwhd where 合同ID=" + n);
    rows.push_back(Scalar("select 出租状态 from fwfy where 房源ID=1"));
    const std::vector<std::string> rooms =
        Query("select 是否出租 from fwfy_fz where 房源ID=1 order by AutoID");
    rows.push_back(rooms.at(0) + "|" + rooms.at(1));
    return rows;
  }
};

TEST_P(FwHdToolsTest, EndingAContractFreesWhatItLetAndLeavesItsScheduleAlone) {
  struct Case {
    const char* name;
    std::string room, state;  // contract 5, the one ended
    std::string other_room;   // contract 6, in force; "-" for none
    int room_a, room_b;
    std::string unit_before;
    std::vector<std::string> after;  // Rows(5)
  };
  const std::vector<Case> cases = {
      {"the whole unit", "", "生效", "-", 0, 0, "已出租", {"02|审核|终止", "未出租", "0|0"}},
      {"room A, room B let too",
       "A",
       "生效",
       "B",
       1,
       1,
       "已出租",
       {"02|审核|终止", "部分出租", "0|1"}},
      {"one of two whole-unit contracts",
       "",
       "生效",
       "",
       0,
       0,
       "已出租",
       {"02|审核|终止", "已出租", "0|0"}},
      {"a finished contract on room A",
       "A",
       "完成",
       "-",
       1,
       0,
       "部分出租",
       {"02|审核|终止", "未出租", "0|0"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    for (const char* table : {"fwfy", "fwfy_fz", "fwhd", "fwhdmx", "fwhdfs_sk"})
      Exec(std::string("delete from ") + table);
    AddUnit(c.unit_before, c.room_a, c.room_b);
    AddContract(5, c.room, "02", c.state);
    if (c.other_room != "-") AddContract(6, c.other_room, "02", "生效");
    const Run run = Finish(5);
    EXPECT_TRUE(run.result);
    EXPECT_EQ(run.box, kEnded);
    EXPECT_EQ(Rows(5), c.after);
    EXPECT_EQ(Query("select AutoID,合同ID,费用名称,收款日期,是否已收 from fwhdfs_sk where "
                    "合同ID=5 order by AutoID"),
              (std::vector<std::string>{"51|5|房租|2012-10-15|1", "52|5|房租|2013-01-15|0"}));
    EXPECT_FALSE(db().InTransaction());
  }
}

TEST_P(FwHdToolsTest, EachToolRefusesAContractNotInTheStateItLeavesAndWritesNothing) {
  AddUnit("已出租", /*room_a=*/1, /*room_b=*/0);
  AddContract(1, "A", "01", "未生效");
  AddContract(2, "A", "02", "终止");
  AddContract(3, "A", "02", "生效");
  AddContract(4, "A", "02", "完成");
  struct Case {
    const char* tool;
    int contract;
    std::string box;
  };
  const std::vector<Case> cases = {
      {"cFwHd_finish", 1, kNotApproved},  {"cFwHd_finish", 999, kNotApproved},
      {"cFwHd_finish", 2, kEndedAlready}, {"cFwHd_unfinish", 1, kNotEnded},
      {"cFwHd_unfinish", 3, kNotEnded},   {"cFwHd_unfinish", 4, kNotEnded},
  };
  for (const Case& c : cases) {
    const Run run = RunTool(c.tool, c.contract);
    EXPECT_FALSE(run.result) << c.tool << " " << c.contract;
    EXPECT_EQ(run.box, c.box) << c.tool << " " << c.contract;
  }
  EXPECT_EQ(Query("select 状态 from fwhd order by 合同ID"),
            (std::vector<std::string>{"未生效", "终止", "生效", "完成"}));
  EXPECT_EQ(Rows(3).back(), "1|0");
  EXPECT_EQ(Rows(3).at(1), "已出租");
}

TEST_P(FwHdToolsTest, SettingBackLetsAgainUnlessTheUnitWasWithdrawnMeanwhile) {
  AddUnit("未出租", /*room_a=*/0, /*room_b=*/1);
  AddContract(5, "A", "02", "终止");
  Run run = Unfinish(5);
  EXPECT_TRUE(run.result);
  EXPECT_EQ(run.box, kInForce);
  EXPECT_EQ(Rows(5), (std::vector<std::string>{"02|审核|生效", "已出租", "1|1"}));
  EXPECT_EQ(Scalar("select count(*) from fwhdfs_sk where 合同ID=5"), "2");

  EXPECT_EQ(Finish(5).box, kEnded);
  Exec("update fwfy set 出租状态='已失效' where 房源ID=1");
  run = Unfinish(5);
  EXPECT_FALSE(run.result);
  EXPECT_EQ(run.box, kWithdrawn);
  EXPECT_EQ(Rows(5), (std::vector<std::string>{"02|审核|终止", "已失效", "0|1"}));

  // An ID no row bears passes both guards: nothing is written, and success is still reported.
  run = Unfinish(999);
  EXPECT_TRUE(run.result);
  EXPECT_EQ(run.box, kInForce);
  EXPECT_EQ(Rows(5), (std::vector<std::string>{"02|审核|终止", "已失效", "0|1"}));
}

TEST_P(FwHdToolsTest, AFailedRentalStateReportsItAndLeavesTheContractAsItWas) {
  AddUnit("已出租", /*room_a=*/1, /*room_b=*/0);
  AddContract(5, "A", "02", "生效");
  Exec("drop table fwfy_fz");
  const Run run = Finish(5);
  EXPECT_FALSE(run.result);
  EXPECT_EQ(run.box.substr(0, std::string("Check Error::").size()), "Check Error::");
  EXPECT_NE(run.box.find("fwfy_fz"), std::string::npos) << run.box;
  EXPECT_EQ(run.box.substr(run.box.size() - std::string("|16|房屋租赁管理").size()),
            "|16|房屋租赁管理");
  EXPECT_EQ(Scalar("select 状态 from fwhd where 合同ID=5"), "生效");
  EXPECT_FALSE(db().InTransaction());
}

TEST_P(FwHdToolsTest, FromTheMenuTheContractIsChosenAmongTheApprovedOnes) {
  AddUnit("已出租", /*room_a=*/1, /*room_b=*/0);
  AddContract(4, "A", "01", "未生效");
  AddContract(5, "A", "02", "生效");
  // The first row listed is the approved contract: HT4, not approved, is not offered.
  host().ui().dialogs.push_back(kvhost::ScriptedUi::ChooseRows({0}));
  host().ui().answers = {msgbox::kOk};
  bool result = false;
  ASSERT_TRUE(
      host().run_tool("cFwHd_finish", /*progID=*/870501, /*record=*/0, /*action=*/0, result).ok());
  EXPECT_TRUE(result);
  EXPECT_EQ(host().ui().shown.back().prompt, "该合同已设置为[终止]状态！");
  EXPECT_EQ(Query("select 状态 from fwhd order by 合同ID"),
            (std::vector<std::string>{"未生效", "终止"}));

  // A cancel runs nothing.
  host().ui().dialogs.push_back(kvhost::ScriptedUi::CancelPicker());
  ASSERT_TRUE(host()
                  .run_tool("cFwHd_unfinish", /*progID=*/870502, /*record=*/0, /*action=*/0, result)
                  .ok());
  EXPECT_FALSE(result);
  EXPECT_EQ(host().ui().shown.back().kind, "picker");
  EXPECT_EQ(Scalar("select 状态 from fwhd where 合同ID=5"), "终止");
}

MRVK_ON_BOTH_ENGINES(FwHdToolsTest);

}  // namespace
}  // namespace mrvk
