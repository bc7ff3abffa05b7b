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
  ASSERT_EQ(Run({"--units", "400"}, &text), 0) << text;
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
  EXPECT_EQ(Run({"--colour", "red"}, &text), 2);
}

MRVK_ON_BOTH_ENGINES(DemoCommandTest);

}  // namespace
}  // namespace mrvk_app
