// The server engine: PostgreSQL through libpq.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kvhost/db/connection.h"

typedef struct pg_conn PGconn;
typedef struct pg_result PGresult;

namespace kvhost::db {

class PgConnection : public Connection {
 public:
  // Connects with a libpq connection URI or key=value string. Null and error set on failure.
  static std::unique_ptr<PgConnection> Open(const std::string& conninfo, std::string& error);
  ~PgConnection() override;

  Dialect dialect() const override { return Dialect::Postgres; }
  Status Execute(const RewrittenSql& stmt, int64_t* rows_affected) override;
  Status Query(const RewrittenSql& stmt, ResultSet& out) override;
  Status ExecuteRaw(const std::string& sql) override;
  Status Begin() override;
  Status Commit() override;
  Status Rollback() override;
  bool InTransaction() const override;
  Status NewId(const std::string& table, const std::string& column, int32_t& id) override;

  // The name of the sequence that gives the keys of table/column.
  static std::string SequenceName(const std::string& table, const std::string& column);

 private:
  PgConnection() = default;
  // Sets the session's time zone to the host's.
  void UseHostTimeZone();
  // Runs stmt as a prepared statement of its shape; result in *out (caller PQclear's it).
  Status Run(const RewrittenSql& stmt, PGresult** out);

  struct CacheEntry {
    std::string name;
    uint64_t last_use;
  };
  struct KeyBlock {
    std::vector<int32_t> values;
    size_t next = 0;
  };
  PGconn* conn_ = nullptr;
  std::unordered_map<std::string, KeyBlock> key_blocks_;
  std::unordered_map<std::string, CacheEntry> cache_;
  uint64_t tick_ = 0;
  uint64_t next_name_ = 0;
};

}  // namespace kvhost::db
