#include "support/engines.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>

#include "kvhost/db/pg_connection.h"

namespace kvtest {
namespace {

std::atomic<int> g_counter{0};

std::string WithSearchPath(const std::string& base, const std::string& schema) {
  return base + (base.find('?') == std::string::npos ? "?" : "&") + "options=-csearch_path%3D" +
         schema;
}

}  // namespace

std::string TestPgUrl() {
  const char* url = std::getenv("MRVK_TEST_PG");
  return url ? url : "";
}

void EngineTest::SetUp() {
  const int n = ++g_counter;
  const std::string tag = std::to_string(getpid()) + "_" + std::to_string(n);
  // Each test has its own program folder, so layout files of one test never reach another.
  app_path_ = (std::filesystem::temp_directory_path() / ("mrvk_test_app_" + tag)).string();
  std::filesystem::remove_all(app_path_);
  if (is_pg()) {
    const std::string base = TestPgUrl();
    if (base.empty()) {
      if (std::getenv("MRVK_REQUIRE_PG"))
        FAIL() << "MRVK_REQUIRE_PG is set but MRVK_TEST_PG names no PostgreSQL cluster";
      GTEST_SKIP() << "no PostgreSQL: MRVK_TEST_PG is not set (scripts/test.sh starts a cluster)";
    }
    pg_schema_ = "t_" + tag;
    std::string error;
    auto admin = kvhost::db::PgConnection::Open(base, error);
    ASSERT_TRUE(admin) << error;
    ASSERT_TRUE(admin->ExecuteRaw("CREATE SCHEMA " + pg_schema_).ok());
    url_ = WithSearchPath(base, pg_schema_);
  } else {
    sqlite_file_ =
        (std::filesystem::temp_directory_path() / ("mrvk_test_" + tag + ".sqlite3")).string();
    std::filesystem::remove(sqlite_file_);
    url_ = "sqlite://" + sqlite_file_;
  }
  host_ = NewHost();
  ASSERT_TRUE(host_->status().ok()) << host_->status().message();
  kvhost::Status s = host_->create_schema();
  ASSERT_TRUE(s.ok()) << s.message();
}

void EngineTest::TearDown() {
  host_.reset();
  if (!pg_schema_.empty()) {
    std::string error;
    if (auto admin = kvhost::db::PgConnection::Open(TestPgUrl(), error)) {
      kvhost::Status dropped = admin->ExecuteRaw("DROP SCHEMA " + pg_schema_ + " CASCADE");
      EXPECT_TRUE(dropped.ok()) << dropped.message();
    } else {
      ADD_FAILURE() << error;
    }
  }
  if (!sqlite_file_.empty()) {
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(sqlite_file_ + suffix);
  }
  std::error_code ignored;
  std::filesystem::remove_all(app_path_, ignored);
}

std::unique_ptr<kvhost::Host> EngineTest::NewHost() const {
  std::filesystem::create_directories(app_path_);
  return std::make_unique<kvhost::Host>(kvhost::HostConfig{
      .database = url_, .user = "张三", .login_date = "2012-10-11", .app_path = app_path_});
}

void EngineTest::Exec(const std::string& sql) {
  ASSERT_TRUE(db().Execute(sql)) << sql << "\n" << db().Error().Description();
}

std::string EngineTest::Scalar(const std::string& sql) {
  auto cmd = db().CreateCommand(sql, 1);
  mrvk::Variant v = cmd->ExecuteScalar();
  EXPECT_EQ(db().Error().Description(), "") << sql;
  return v.ToString();
}

std::vector<std::string> EngineTest::Query(const std::string& sql) {
  auto rs = db().CreateCommand(sql, 1)->OpenRecordset();
  EXPECT_EQ(db().Error().Description(), "") << sql;
  std::vector<std::string> rows;
  for (; rs && !rs->Eof(); rs->MoveNext()) {
    std::string row;
    for (int i = 0; i < rs->FieldCount(); ++i)
      row += (i ? "|" : "") + rs->Fields(i).Value.ToString();
    rows.push_back(row);
  }
  return rows;
}

}  // namespace kvtest
