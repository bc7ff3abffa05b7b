// The rental-state rule over its cases, on both engines: rooms and contracts set up by hand,
// the rule run for one unit and room, the unit's state and the rooms' flags read back.
#include "mrvk/housing/rental_state.h"

#include <gtest/gtest.h>

#include "support/engines.h"

namespace mrvk {
namespace {

struct Contract {
  std::string room;  // "" for the whole unit
  std::string smark = "02";
  std::string state = "生效";
};

struct Case {
  const char* name;
  std::vector<std::pair<std::string, int>> rooms;  // number, 是否出租 before
  std::vector<Contract> contracts;
  std::string room;  // the room the rule is run for
  std::string state;
  std::string flags;  // the rooms' 是否出租 after, in their order
};

class RentalStateTest : public kvtest::EngineTest {};

TEST_P(RentalStateTest, DerivesTheUnitsStateAndTheRoomsFlagsFromTheContractsInForce) {
  const std::vector<Case> cases = {
      {"no rooms, no contract", {}, {}, "", "未出租", ""},
      {"a whole-unit contract whatever the rooms say", {{"A", 0}}, {{""}}, "", "已出租", "0"},
      {"one of two rooms taken", {{"A", 0}, {"B", 0}}, {{"A"}}, "A", "部分出租", "1,0"},
      {"the one room taken is all rooms", {{"A", 0}}, {{"A"}}, "A", "已出租", "1"},
      {"a contract not approved holds nothing", {{"A", 1}}, {{"A", "01"}}, "A", "未出租", "0"},
      {"an ended contract frees the room", {{"A", 1}}, {{"A", "02", "终止"}}, "A", "未出租", "0"},
      {"another contract in force keeps it",
       {{"A", 1}},
       {{"A", "02", "终止"}, {"A"}},
       "A",
       "已出租",
       "1"},
      {"two rooms of one number both follow",
       {{"A", 0}, {"A", 0}, {"B", 1}},
       {{"A"}},
       "A",
       "已出租",
       "1,1,1"},
      {"a quote in the room's number", {{"O'1", 0}, {"B", 0}}, {{"O'1"}}, "O'1", "部分出租", "1,0"},
      {"without a room named the flags stay", {{"A", 1}, {"B", 0}}, {}, "", "部分出租", "1,0"},
  };
  int next_id = 1;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string unit = std::to_string(next_id++);
    Exec("insert into fwfy (房源ID,房源编号,出租状态) values (" + unit + ",'F" + unit +
         "','已失效')");
    for (const auto& [number, let] : c.rooms)
      Exec("insert into fwfy_fz (AutoID,房源ID,房间号,是否出租) values (" +
           std::to_string(next_id++) + "," + unit + ",'" +
           (number == "O'1" ? std::string("O''1") : number) + "'," + std::to_string(let) + ")");
    for (const Contract& k : c.contracts) {
      const std::string id = std::to_string(next_id++);
      Exec("insert into fwhd (合同ID,合同编号,smark,状态,分租房间) values (" + id + ",'HT" + id +
           "','" + k.smark + "','" + k.state + "','" +
           (k.room == "O'1" ? std::string("O''1") : k.room) + "')");
      Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (" + id + "," + id + "," + unit +
           ")");
    }
    ASSERT_EQ(RecalcRentalState(db(), std::stoi(unit), c.room), "");
    EXPECT_EQ(Scalar("select 出租状态 from fwfy where 房源ID=" + unit), c.state);
    std::string flags;
    for (const std::string& f :
         Query("select 是否出租 from fwfy_fz where 房源ID=" + unit + " order by AutoID"))
      flags += (flags.empty() ? "" : ",") + f;
    EXPECT_EQ(flags, c.flags);
  }
}

TEST_P(RentalStateTest, AFailingStatementIsReturnedForTheCallerToReport) {
  Exec("insert into fwfy (房源ID,房源编号) values (1,'F1')");
  Exec("drop table fwfy_fz");
  const std::string error = RecalcRentalState(db(), 1, "A");
  EXPECT_NE(error, "");
  EXPECT_EQ(Scalar("select 出租状态 from fwfy where 房源ID=1"), "");
}

MRVK_ON_BOTH_ENGINES(RentalStateTest);

}  // namespace
}  // namespace mrvk
