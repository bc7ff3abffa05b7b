// NewID is the one guard against two clerks taking the same key: several processes draw keys
// at once, on both engines, and no key may come out twice.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <set>

#include "kvhost/lib/bill_data.h"
#include "support/engines.h"

namespace kvhost {
namespace {

class NewIdConcurrencyTest : public kvtest::EngineTest {};

TEST_P(NewIdConcurrencyTest, ProcessesDrawingAtOnceNeverShareAKey) {
  constexpr int kProcesses = 4;
  constexpr int kKeysEach = 150;
  const std::string out_dir = ::testing::TempDir();
  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      // A clerk of its own: its own connection, drawing keys inside and outside brackets,
      // and writing the rows as a sheet would.
      auto clerk = NewHost();
      BillData bill;
      bill.Database(&clerk->database());
      std::ofstream out(out_dir + "/newid_" + std::to_string(getpid()));
      int failures = 0;
      for (int i = 0; i < kKeysEach; ++i) {
        const bool bracket = i % 3 == 0;
        if (bracket) clerk->database().BeginTrans();
        int32_t id = 0;
        if (!bill.NewID("fwhdfs_sk", "AutoID", id).empty()) ++failures;
        clerk->database().Execute("insert into fwhdfs_sk (AutoID,合同ID,费用名称) values (" +
                                  std::to_string(id) + ",1,'房租')");
        if (!clerk->database().Error().Description().empty()) ++failures;
        if (bracket) clerk->database().CommitTrans();
        out << id << "\n";
      }
      out.close();
      _exit(failures == 0 ? 0 : 1);
    }
    children.push_back(pid);
  }
  std::set<int> keys;
  for (pid_t pid : children) {
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a clerk failed to draw or save";
    std::ifstream in(out_dir + "/newid_" + std::to_string(pid));
    int id = 0;
    int n = 0;
    while (in >> id) {
      EXPECT_TRUE(keys.insert(id).second) << "key " << id << " came out twice";
      ++n;
    }
    EXPECT_EQ(n, kKeysEach);
    std::remove((out_dir + "/newid_" + std::to_string(pid)).c_str());
  }
  EXPECT_EQ(keys.size(), static_cast<size_t>(kProcesses * kKeysEach));
  EXPECT_EQ(Scalar("select count(*) from fwhdfs_sk"), std::to_string(kProcesses * kKeysEach));
}

MRVK_ON_BOTH_ENGINES(NewIdConcurrencyTest);

}  // namespace
}  // namespace kvhost
