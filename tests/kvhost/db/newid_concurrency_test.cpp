// NewID is the one guard against two clerks taking the same key: several processes draw keys
// at once, on both engines, and no key may come out twice.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "kvhost/lib/bill_data.h"
#include "support/engines.h"

namespace kvhost {
namespace {

class NewIdConcurrencyTest : public kvtest::EngineTest {};

TEST_P(NewIdConcurrencyTest, ProcessesDrawingAtOnceNeverShareAKey) {
  std::vector<pid_t> children;
  for (int p = 0; p < 4; ++p) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      // A clerk of its own: its own connection, drawing 150 keys inside and outside brackets
      // and writing the rows as a sheet would. A key drawn twice fails its insert, as AutoID
      // is the table's key.
      auto clerk = NewHost();
      BillData bill;
      bill.Database(&clerk->database());
      int failures = 0;
      for (int i = 0; i < 150; ++i) {
        const bool bracket = i % 3 == 0;
        if (bracket) clerk->database().BeginTrans();
        int32_t id = 0;
        if (!bill.NewID("fwhdfs_sk", "AutoID", id).empty()) ++failures;
        clerk->database().Execute("insert into fwhdfs_sk (AutoID,合同ID,费用名称) values (" +
                                  std::to_string(id) + ",1,'房租')");
        if (!clerk->database().Error().Description().empty()) ++failures;
        if (bracket) clerk->database().CommitTrans();
      }
      _exit(failures == 0 ? 0 : 1);
    }
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a clerk failed to draw or save";
  }
  EXPECT_EQ(Scalar("select count(distinct AutoID) from fwhdfs_sk"), "600");
}

MRVK_ON_BOTH_ENGINES(NewIdConcurrencyTest);

}  // namespace
}  // namespace kvhost
