// Every database test runs on both engines: SQLite (a fresh file per test) and PostgreSQL (a
// fresh schema per test in the cluster named by MRVK_TEST_PG, which scripts/test.sh starts).
// Without MRVK_TEST_PG the PostgreSQL cases are skipped with the reason printed, unless
// MRVK_REQUIRE_PG is set: then they fail.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "kvhost/host.h"

namespace kvtest {

class EngineTest : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override;
  void TearDown() override;

  bool is_pg() const { return std::string(GetParam()) == "postgres"; }
  // The host's program folder; layout files go below it.
  const std::string& app_path() const { return app_path_; }
  // The database URL of this test; its schema is created in SetUp.
  const std::string& url() const { return url_; }
  // The test's host on url() (user 张三, login date 2012-10-11, app path a temp folder of
  // its own).
  kvhost::Host& host() { return *host_; }
  kvhost::db::Database& db() { return host_->database(); }
  // Another host on the same database, as a second clerk would have.
  std::unique_ptr<kvhost::Host> NewHost() const;

  // Runs a statement through the module's path (rewriter, engine) and fails the test when
  // it does not succeed.
  void Exec(const std::string& sql);
  // The first column of the first row, as text ("" when no row).
  std::string Scalar(const std::string& sql);
  // Every row, its columns as text joined by "|".
  std::vector<std::string> Query(const std::string& sql);

 private:
  std::string url_;
  std::string app_path_;
  std::string sqlite_file_;
  std::string pg_schema_;
  std::unique_ptr<kvhost::Host> host_;
};

// The PostgreSQL cluster for tests, or "" when there is none.
std::string TestPgUrl();

}  // namespace kvtest

#define MRVK_ON_BOTH_ENGINES(Suite)                            \
  INSTANTIATE_TEST_SUITE_P(                                    \
      Engines, Suite, ::testing::Values("sqlite", "postgres"), \
      [](const ::testing::TestParamInfo<const char*>& i) { return std::string(i.param); })
