// BuildSchedule on both engines: the rows it writes to fwhdfs_sk from a contract's fee terms,
// and where it stops when something fails.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "kvhost/lib/bill_data.h"
#include "mrvk/contract/schedule.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"
#include "support/engines.h"

namespace {

using mrvk::Date;
using mrvk::ParseDate;

// The database as BuildSchedule sees it, with a record of the statements it was given and a
// failure of the n-th Execute (counted from 1; 0 for none): that statement does not run and
// its text stands in Error() until the next statement.
class WatchedDatabase : public mrvk::IHostDatabase {
 public:
  explicit WatchedDatabase(mrvk::IHostDatabase& inner) : inner_(inner) {}

  std::vector<std::string> statements;
  int fail_execute = 0;
  int releases = 0;

  std::unique_ptr<mrvk::IHostCommand> CreateCommand(const std::string& sql,
                                                    int command_type) override {
    statements.push_back(sql);
    failure_.text.clear();
    return std::make_unique<Command>(*this, inner_.CreateCommand(sql, command_type));
  }
  bool Release() override {
    ++releases;
    return inner_.Release();
  }
  void BeginTrans() override { inner_.BeginTrans(); }
  void CommitTrans() override { inner_.CommitTrans(); }
  void RollbackTrans() override { inner_.RollbackTrans(); }
  bool InTransaction() const override { return inner_.InTransaction(); }
  const mrvk::IHostError& Error() const override {
    return failure_.text.empty() ? inner_.Error() : failure_;
  }
  const mrvk::IHostProperties& Properties() const override { return inner_.Properties(); }

 private:
  struct Failure : mrvk::IHostError {
    std::string text;
    std::string Description() const override { return text; }
  };
  class Command : public mrvk::IHostCommand {
   public:
    Command(WatchedDatabase& db, std::unique_ptr<mrvk::IHostCommand> inner)
        : db_(db), inner_(std::move(inner)) {}
    void Execute() override {
      if (++db_.executes_ == db_.fail_execute) {
        db_.failure_.text = "disk full";
        return;
      }
      inner_->Execute();
    }
    mrvk::Variant ExecuteScalar() override { return inner_->ExecuteScalar(); }
    std::unique_ptr<mrvk::Recordset> OpenRecordset() override { return inner_->OpenRecordset(); }

   private:
    WatchedDatabase& db_;
    std::unique_ptr<mrvk::IHostCommand> inner_;
  };

  mrvk::IHostDatabase& inner_;
  Failure failure_;
  int executes_ = 0;
};

class BuildScheduleTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    bill_.Database(&db());
  }

  // A fee term; period and reading are SQL literals so that a blank (null) can be written.
  void AddFeeTerm(int32_t contract, const std::string& name, int advance, int fixed,
                  const std::string& period, const std::string& reading, int line) {
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否预收,是否包干,收款期间,度数,序号) "
        "values (" +
        std::to_string(++detail_id_) + "," + std::to_string(contract) + "," +
        mrvk::SqlQuoted(name) + "," + std::to_string(advance) + "," + std::to_string(fixed) + "," +
        period + "," + reading + "," + std::to_string(line) + ")");
  }

  // The schedule rows of a contract as text, by line number and start:
  // 费用名称|是否包干|是否预收|收款期间|收款日期|起始日期|结束日期|上期度数|是否最后一期|序号|是否已收
  std::vector<std::string> Schedule(int32_t contract) {
    return Query(
        "select 费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,结束日期,上期度数,"
        "是否最后一期,序号,是否已收 from fwhdfs_sk where 合同ID=" +
        std::to_string(contract) + " order by 序号,起始日期,AutoID");
  }

  bool Build(mrvk::IHostDatabase& database, mrvk::IHostBillData& bill, int32_t contract,
             double months = 10) {
    return mrvk::BuildSchedule(database, bill, contract, *ParseDate("2012-03-15"),
                               *ParseDate("2013-01-14"), months);
  }

  kvhost::BillData bill_;
  int32_t detail_id_ = 0;
};

TEST_P(BuildScheduleTest, WritesOneRowPerFeeTermAndPeriod) {
  AddFeeTerm(7, "O'Neil's 电费", /*advance=*/0, /*fixed=*/0, "1.5", "123.5", /*line=*/2);
  AddFeeTerm(7, "房租", /*advance=*/1, /*fixed=*/1, "3", "0", /*line=*/1);
  AddFeeTerm(7, "押金", /*advance=*/1, /*fixed=*/1, "0", "0", /*line=*/3);
  AddFeeTerm(7, "杂费", /*advance=*/1, /*fixed=*/1, "null", "null", /*line=*/4);
  AddFeeTerm(8, "房租", /*advance=*/1, /*fixed=*/1, "1", "0", /*line=*/1);

  ASSERT_TRUE(Build(db(), bill_, /*contract=*/7)) << db().Error().Description();

  const std::vector<std::string> want = {
      "房租|1|1|3|2012-03-15|2012-03-15|2012-06-14|0|0|1|0",
      "房租|1|1|3|2012-06-14|2012-06-15|2012-09-14|0|0|1|0",
      "房租|1|1|3|2012-09-14|2012-09-15|2012-12-14|0|0|1|0",
      "房租|1|1|3|2012-12-14|2012-12-15|2013-01-14|0|1|1|0",
      // The metered fee: its period of 1.5 months runs as 2, collected at each period's end;
      // the row keeps 1.5.
      "O'Neil's 电费|0|0|1.5|2012-05-14|2012-03-15|2012-05-14|123.5|0|2|0",
      "O'Neil's 电费|0|0|1.5|2012-07-14|2012-05-15|2012-07-14|123.5|0|2|0",
      "O'Neil's 电费|0|0|1.5|2012-09-14|2012-07-15|2012-09-14|123.5|0|2|0",
      "O'Neil's 电费|0|0|1.5|2012-11-14|2012-09-15|2012-11-14|123.5|0|2|0",
      "O'Neil's 电费|0|0|1.5|2013-01-14|2012-11-15|2013-01-14|123.5|1|2|0",
  };
  EXPECT_EQ(Schedule(7), want);
  EXPECT_EQ(Scalar("select count(distinct AutoID) from fwhdfs_sk"), "9");
  EXPECT_EQ(Schedule(8).size(), 0u);
}

TEST_P(BuildScheduleTest, RebuildingReplacesTheContractsRowsOnly) {
  AddFeeTerm(7, "房租", /*advance=*/1, /*fixed=*/1, "3", "0", /*line=*/1);
  Exec("insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否已收,序号) values (900001,7,'旧',1,9)");
  Exec("insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否已收,序号) values (900002,8,'别的',1,1)");
  ASSERT_TRUE(Build(db(), bill_, /*contract=*/7));
  const auto first = Schedule(7);
  ASSERT_TRUE(Build(db(), bill_, /*contract=*/7));
  EXPECT_EQ(Schedule(7), first);
  EXPECT_EQ(first.size(), 4u);
  EXPECT_EQ(Scalar("select count(*) from fwhdfs_sk where 合同ID=7 and 是否已收<>0"), "0");
  EXPECT_EQ(Scalar("select 费用名称 from fwhdfs_sk where 合同ID=8"), "别的");
  // Terms without periods: the old rows go all the same.
  Exec("update fwhdfs set 收款期间=0 where 合同ID=7");
  EXPECT_TRUE(Build(db(), bill_, /*contract=*/7));
  EXPECT_TRUE(Schedule(7).empty());
}

TEST_P(BuildScheduleTest, FailuresEndTheBuildAndLeaveWhatRan) {
  AddFeeTerm(7, "房租", /*advance=*/1, /*fixed=*/1, "1", "0", /*line=*/1);
  AddFeeTerm(7, "电费", /*advance=*/0, /*fixed=*/0, "0.4", "0", /*line=*/2);

  // The third insert fails: two rows stand, and nothing runs after it.
  {
    WatchedDatabase watched(db());
    watched.fail_execute = 4;  // the delete, then inserts 1 to 3
    EXPECT_FALSE(Build(watched, bill_, /*contract=*/7));
    EXPECT_EQ(watched.Error().Description(), "disk full");
    EXPECT_EQ(watched.statements.size(), 5u);
    EXPECT_EQ(Schedule(7).size(), 2u);
    EXPECT_GE(watched.releases, 1);
  }
  // No key: the old rows are gone and none is written.
  {
    kvhost::BillData no_keys;
    EXPECT_FALSE(Build(db(), no_keys, /*contract=*/7));
    EXPECT_TRUE(Schedule(7).empty());
  }
  // A period that rounds to 0 is a run-time failure once the terms before it are written.
  EXPECT_THROW(Build(db(), bill_, /*contract=*/7), mrvk::VbError);
  const auto rows = Schedule(7);
  EXPECT_EQ(rows.size(), 10u);
  for (const auto& row : rows) EXPECT_EQ(row.rfind("房租|", 0), 0u) << row;
}

MRVK_ON_BOTH_ENGINES(BuildScheduleTest);

}  // namespace
