// One connection to a database engine. Statements arrive already rewritten for the engine
// (SqlRewriter); the connection prepares them once per shape and binds the lifted literals.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kvhost/db/sql_rewriter.h"
#include "kvhost/status.h"
#include "mrvk/frame/variant.h"

namespace kvhost::db {

// The rows of one SELECT, read in full: names and row-major values. Values do not depend on
// the engine: Null, whole numbers (Long), other numbers (Double), texts, and dates as text
// "yyyy-mm-dd".
struct ResultSet {
  std::vector<std::string> columns;
  std::vector<mrvk::Variant> values;  // rows * columns.size()
  size_t rows() const { return columns.empty() ? 0 : values.size() / columns.size(); }
};

class Connection {
 public:
  virtual ~Connection() = default;
  virtual Dialect dialect() const = 0;
  // Runs a statement that yields no rows. rows_affected may be null.
  virtual Status Execute(const RewrittenSql& stmt, int64_t* rows_affected) = 0;
  // Runs a SELECT and reads all its rows into out.
  virtual Status Query(const RewrittenSql& stmt, ResultSet& out) = 0;
  // Runs statement text of our own (DDL, engine settings) without rewriting.
  virtual Status ExecuteRaw(const std::string& sql) = 0;
  // Transactions. Begin on SQLite takes the write lock at once, so that two writers queue
  // instead of failing when both try to upgrade.
  virtual Status Begin() = 0;
  virtual Status Commit() = 0;
  virtual Status Rollback() = 0;
  // True while a transaction of Begin is open on the engine, also after a failed statement
  // spoiled it (PostgreSQL) and until Commit or Rollback ends it. The group commit's own
  // transaction does not count.
  virtual bool InTransaction() const = 0;
  // Group commit: while on, writes outside a bracket share one transaction that Flush (or
  // turning it off) commits. Each statement still runs, fails and stands on its own; only
  // the durable commit is shared. The host turns it on around each call into the module and
  // flushes before any modal box. Engines whose commits cost nothing extra ignore it.
  virtual void SetGroupCommit(bool /*on*/) {}
  virtual Status Flush() { return Status::Ok(); }
  // A new key for table/column, unused in the table and safe against concurrent callers in
  // other connections and processes. Works inside and outside a transaction.
  virtual Status NewId(const std::string& table, const std::string& column, int32_t& id) = 0;
};

// Opens a connection from a database URL:
//   "sqlite:///abs/path.sqlite3", "sqlite://relative/path.sqlite3", "sqlite://" (in memory),
//   "postgresql://..." or "postgres://..." (a libpq connection URI).
// On failure returns null and sets error.
std::unique_ptr<Connection> OpenConnection(const std::string& url, std::string& error);

}  // namespace kvhost::db
