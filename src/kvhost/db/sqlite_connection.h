// The embedded engine: SQLite, playing the part of the Jet file database.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "kvhost/db/connection.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kvhost::db {

class SqliteConnection : public Connection {
 public:
  // Opens (creating when missing) the database file at path; "" or ":memory:" for an
  // in-memory database. File databases run in WAL mode. Null and error set on failure.
  static std::unique_ptr<SqliteConnection> Open(const std::string& path, std::string& error);
  ~SqliteConnection() override;

  Dialect dialect() const override { return Dialect::Sqlite; }
  Status Execute(const RewrittenSql& stmt, int64_t* rows_affected) override;
  Status Query(const RewrittenSql& stmt, ResultSet& out) override;
  Status ExecuteRaw(const std::string& sql) override;
  Status Begin() override;
  Status Commit() override;
  Status Rollback() override;
  bool InTransaction() const override;
  Status NewId(const std::string& table, const std::string& column, int32_t& id) override;
  void SetGroupCommit(bool on) override;
  Status Flush() override;

 private:
  SqliteConnection() = default;
  // The prepared statement of stmt's shape (from the cache when seen before), reset and
  // bound to stmt's parameters.
  Status Prepare(const RewrittenSql& stmt, sqlite3_stmt*& out);

  struct CacheEntry {
    sqlite3_stmt* stmt;
    uint64_t last_use;
  };
  struct KeyBlock {
    int64_t next = 1;
    int64_t last = 0;  // next > last: the block is used up
  };
  sqlite3* db_ = nullptr;
  bool explicit_ = false;      // between Begin and Commit/Rollback
  bool group_commit_ = false;  // writes outside a bracket share one transaction
  bool implicit_ = false;      // that shared transaction is open
  std::unordered_map<std::string, KeyBlock> key_blocks_;
  std::unordered_map<std::string, CacheEntry> cache_;
  uint64_t tick_ = 0;
};

}  // namespace kvhost::db
