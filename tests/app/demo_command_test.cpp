// mrvk demo on both engines: the rows it writes hang together, and it never writes twice.
#include "app/demo_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "kvhost/lib/bill_data.h"
#include "support/engines.h"

namespace mrvk_app {
namespace {

class DemoCommandTest : public kvtest::EngineTest {
 protected:
  int Run(std::vector<std::string> args, std::string* out_text = nullptr) {
    std::ostringstream out, err;
    args.insert(args.begin(), {"--database", url()});
    const int rc = RunDemo(args, out, err);
    if (out_text) *out_text = out.str() + err.str();
    return rc;
  }
};

TEST_P(DemoCommandTest, FillsAnEmptyDatabaseWithRowsThatReferToEachOther) {
  std::string text;
  ASSERT_EQ(Run({"--units", "400", "--contracts", "0"}, &text), 0) << text;
  EXPECT_NE(text.find("housing units 200/400"), std::string::npos) << text;
  // Units, estates, buildings, owners, clients, fee categories.
  EXPECT_EQ(Query("select (select count(*) from fwfy),(select count(*) from fwwy),(select count(*) "
                  "from fwly),(select count(*) from fwyz where 类型=0),(select count(*) from fwyz "
                  "where 类型=1),(select count(*) from fwfykm)"),
            std::vector<std::string>{"400|1|10|200|400|8"});
  // Every unit lies in a building of its estate and belongs to an owner.
  EXPECT_EQ(Scalar("select count(*) from fwfy A inner join fwly B on A.楼宇ID=B.楼宇ID and "
                   "A.物业ID=B.物业ID inner join fwyz C on A.业主ID=C.业主ID and C.类型=0"),
            "400");
  EXPECT_EQ(Scalar("select count(distinct 房源编号) from fwfy"), "400");
  // One unit in five has two to four rooms, entered through the housing sheet.
  EXPECT_NE(text.find("rooms done: 80 units"), std::string::npos) << text;
  EXPECT_EQ(Scalar("select count(distinct 房源ID) from fwfy_fz"), "80");
  EXPECT_EQ(
      Scalar("select count(*) from fwfy_fz where 是否出租<>0 or 房间号 not in ('A','B','C','D') "
             "or 月租金<=0"),
      "0");
  // Keys come from the key source, so the next key a sheet takes is free.
  kvhost::BillData bill;
  bill.Database(&db());
  int32_t id = 0;
  ASSERT_EQ(bill.NewID("fwfy", "房源ID", id), "");
  EXPECT_EQ(Scalar("select count(*) from fwfy where 房源ID=" + std::to_string(id)), "0");
}

TEST_P(DemoCommandTest, EntersApprovedContractsAndTheUnitsFollowThem) {
  std::string text;
  ASSERT_EQ(Run({"--units", "20", "--contracts", "10"}, &text), 0) << text;
  EXPECT_NE(text.find("contracts done: 10, 2 terminated"), std::string::npos) << text;
  // All approved by the demo's user; two of the leases that have ended are terminated.
  EXPECT_EQ(Query("select 状态,count(*) from fwhd where smark='02' and 审核人='admin' group by "
                  "状态 order by 状态"),
            (std::vector<std::string>{"生效|8", "终止|2"}));
  // Each has its schedule; each tenant was typed in and created by the save.
  EXPECT_EQ(Scalar("select count(*) from fwhd A where not exists (select * from fwhdfs_sk B "
                   "where B.合同ID=A.合同ID)"),
            "0");
  EXPECT_EQ(Scalar("select count(*) from fwhdfs_sk"), "43");
  EXPECT_EQ(Scalar("select count(*) from fwyz where 类型=1"), "30");
  // Unit, state, room let and the unit's state: a whole unit in force is let, a terminated
  // lease leaves its unit or room free, a room in force leaves its unit part let.
  EXPECT_EQ(Query("select F.房源编号,A.状态,A.分租房间,F.出租状态 from (fwhd A inner join fwhdmx M "
                  "on A.合同ID=M.合同ID) inner join fwfy F on M.房源ID=F.房源ID order by "
                  "F.房源编号"),
            (std::vector<std::string>{"F000002|生效||已出租", "F000003|生效||已出租",
                                      "F000005|生效|C|部分出租", "F000006|生效||已出租",
                                      "F000007|生效||已出租", "F000008|生效||已出租",
                                      "F000012|生效||已出租", "F000014|终止||未出租",
                                      "F000017|生效||已出租", "F000020|终止|B|未出租"}));
  EXPECT_EQ(Query("select 房间号 from fwfy_fz A inner join fwfy B on A.房源ID=B.房源ID where "
                  "A.是否出租<>0"),
            std::vector<std::string>{"C"});
  EXPECT_EQ(Scalar("select count(*) from fwfy where 出租状态='未出租'"), "12");
}

TEST_P(DemoCommandTest, LeavesADatabaseWithEstatesAloneAndRefusesBadSizes) {
  std::string text;
  ASSERT_EQ(Run({"--units", "40"}), 0);
  EXPECT_EQ(Run({"--units", "40"}, &text), 1);
  EXPECT_NE(text.find("already holds estates"), std::string::npos) << text;
  EXPECT_EQ(Scalar("select count(*) from fwfy"), "40");
  for (const char* bad : {"0", "-5", "2.5", "abc", "99999999999"}) {
    EXPECT_EQ(Run({"--units", bad}, &text), 2) << bad;
    EXPECT_NE(text.find("whole number"), std::string::npos) << text;
  }
  EXPECT_EQ(Run({"--units", "40", "--contracts", "41"}, &text), 2);
  EXPECT_NE(text.find("--contracts takes"), std::string::npos) << text;
  EXPECT_EQ(Run({"--colour", "red"}, &text), 2);
}

MRVK_ON_BOTH_ENGINES(DemoCommandTest);

}  // namespace
}  // namespace mrvk_app
