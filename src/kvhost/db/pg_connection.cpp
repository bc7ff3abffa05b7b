#include "kvhost/db/pg_connection.h"

#include <libpq-fe.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>

namespace kvhost::db {
namespace {

constexpr size_t kStatementCacheSize = 256;
constexpr int kKeyBlockSize = 32;

// Type oids of the values we read back.
constexpr Oid kBoolOid = 16;
constexpr Oid kInt8Oid = 20;
constexpr Oid kInt2Oid = 21;
constexpr Oid kInt4Oid = 23;
constexpr Oid kFloat4Oid = 700;
constexpr Oid kFloat8Oid = 701;
constexpr Oid kNumericOid = 1700;

std::string Trimmed(const char* msg) {
  std::string s = msg ? msg : "";
  while (!s.empty() && (s.back() == '\n' || s.back() == ' ')) s.pop_back();
  if (s.rfind("ERROR:  ", 0) == 0) s.erase(0, 8);
  return s;
}

Status ResultStatus(PGconn* conn, PGresult* res) {
  if (!res) return Status::Error(Trimmed(PQerrorMessage(conn)));
  const ExecStatusType st = PQresultStatus(res);
  if (st == PGRES_COMMAND_OK || st == PGRES_TUPLES_OK) return Status::Ok();
  return Status::Error(Trimmed(PQresultErrorMessage(res)));
}

}  // namespace

PgConnection::~PgConnection() {
  if (conn_) PQfinish(conn_);
}

namespace {

// The host's time zone: TZ, else the zone /etc/localtime links to ("Asia/Shanghai"); ""
// when neither names one.
std::string HostTimeZone() {
  const char* tz = std::getenv("TZ");
  std::string name = tz ? tz : "";
  if (!name.empty() && name[0] == ':') name.erase(0, 1);
  if (name.empty()) {
    std::error_code ec;
    name = std::filesystem::read_symlink("/etc/localtime", ec).string();
    if (ec) return tz ? "UTC" : "";
  }
  if (const size_t at = name.find("zoneinfo/"); at != std::string::npos) name.erase(0, at + 9);
  return name;
}

// The host's offset from UTC now, as PostgreSQL's interval ("+08:00"), for a zone that
// PostgreSQL does not know by name.
std::string HostUtcOffset() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const long minutes = local.tm_gmtoff / 60;
  char text[16];
  std::snprintf(text, sizeof text, "%c%02ld:%02ld", minutes < 0 ? '-' : '+',
                std::labs(minutes) / 60, std::labs(minutes) % 60);
  return text;
}

}  // namespace

// Date() and Now() of a statement are the host's local date and time on both engines: the
// session takes the host's time zone (PostgreSQL's own would be the server's, which may
// stand in another zone). A zone PostgreSQL does not know by name falls back to the host's
// present offset.
void PgConnection::UseHostTimeZone() {
  const std::string zone = HostTimeZone();
  if (!zone.empty() && zone.find('\'') == std::string::npos &&
      ExecuteRaw("SET TimeZone = '" + zone + "'").ok())
    return;
  (void)ExecuteRaw("SET TimeZone = INTERVAL '" + HostUtcOffset() + "' HOUR TO MINUTE");
}

std::unique_ptr<PgConnection> PgConnection::Open(const std::string& conninfo, std::string& error) {
  auto conn = std::unique_ptr<PgConnection>(new PgConnection());
  conn->conn_ = PQconnectdb(conninfo.c_str());
  if (!conn->conn_ || PQstatus(conn->conn_) != CONNECTION_OK) {
    error = "cannot connect to PostgreSQL: " +
            Trimmed(conn->conn_ ? PQerrorMessage(conn->conn_) : "out of memory");
    return nullptr;
  }
  Status s = conn->ExecuteRaw(
      "SET client_encoding = 'UTF8'; SET DateStyle = 'ISO, YMD'; "
      "SET standard_conforming_strings = on; SET client_min_messages = warning; "
      // A commit returns before its WAL is flushed: a crash can lose the last moments of
      // work but never leaves the database inconsistent, as with SQLite's WAL and
      // synchronous=NORMAL. Statements outside a bracket each commit, so this matters.
      "SET synchronous_commit = off");
  if (!s.ok()) {
    error = "cannot set up the PostgreSQL session: " + s.message();
    return nullptr;
  }
  conn->UseHostTimeZone();
  // Errors raised inside the schema's functions read as their own words, without the
  // function's place in them.
  PQsetErrorContextVisibility(conn->conn_, PQSHOW_CONTEXT_NEVER);
  return conn;
}

Status PgConnection::Run(const RewrittenSql& stmt, PGresult** out) {
  *out = nullptr;
  // One prepared statement per shape and parameter types.
  std::string key = stmt.shape_id ? "#" + std::to_string(stmt.shape_id) : stmt.sql;
  key.push_back('\x01');
  std::vector<Oid> types(stmt.params.size(), 0);
  for (size_t i = 0; i < stmt.params.size(); ++i) {
    switch (stmt.params[i].kind) {
      case SqlParam::Kind::Integer:
        types[i] = kInt8Oid;
        key.push_back('i');
        break;
      case SqlParam::Kind::Real:
        types[i] = kNumericOid;
        key.push_back('r');
        break;
      default:
        key.push_back('t');
    }
  }
  ++tick_;
  auto it = cache_.find(key);
  if (it == cache_.end()) {
    if (cache_.size() >= kStatementCacheSize) {
      auto oldest = cache_.begin();
      for (auto i = cache_.begin(); i != cache_.end(); ++i)
        if (i->second.last_use < oldest->second.last_use) oldest = i;
      PGresult* r = PQexec(conn_, ("DEALLOCATE " + oldest->second.name).c_str());
      PQclear(r);
      cache_.erase(oldest);
    }
    const std::string name = "s" + std::to_string(++next_name_);
    PGresult* prep = PQprepare(conn_, name.c_str(), stmt.sql.c_str(),
                               static_cast<int>(types.size()), types.data());
    Status s = ResultStatus(conn_, prep);
    PQclear(prep);
    if (!s.ok()) return s;
    it = cache_.emplace(key, CacheEntry{name, tick_}).first;
  }
  it->second.last_use = tick_;
  std::vector<const char*> values(stmt.params.size());
  for (size_t i = 0; i < stmt.params.size(); ++i) {
    values[i] = stmt.params[i].kind == SqlParam::Kind::Null ? nullptr : stmt.params[i].text.c_str();
  }
  PGresult* res = PQexecPrepared(conn_, it->second.name.c_str(), static_cast<int>(values.size()),
                                 values.data(), nullptr, nullptr, 0);
  Status s = ResultStatus(conn_, res);
  if (!s.ok()) {
    PQclear(res);
    return s;
  }
  *out = res;
  return Status::Ok();
}

Status PgConnection::Execute(const RewrittenSql& stmt, int64_t* rows_affected) {
  PGresult* res = nullptr;
  Status s = Run(stmt, &res);
  if (!s.ok()) return s;
  if (rows_affected) *rows_affected = std::atoll(PQcmdTuples(res));
  PQclear(res);
  return Status::Ok();
}

Status PgConnection::Query(const RewrittenSql& stmt, ResultSet& out) {
  out = ResultSet{};
  PGresult* res = nullptr;
  Status s = Run(stmt, &res);
  if (!s.ok()) return s;
  const int cols = PQnfields(res);
  const int rows = PQntuples(res);
  std::vector<Oid> types(static_cast<size_t>(cols));
  for (int c = 0; c < cols; ++c) {
    out.columns.emplace_back(PQfname(res, c));
    types[static_cast<size_t>(c)] = PQftype(res, c);
  }
  out.values.reserve(static_cast<size_t>(rows) * static_cast<size_t>(cols));
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < cols; ++c) {
      if (PQgetisnull(res, r, c)) {
        out.values.push_back(mrvk::Variant::Null());
        continue;
      }
      const char* v = PQgetvalue(res, r, c);
      switch (types[static_cast<size_t>(c)]) {
        case kInt2Oid:
        case kInt4Oid:
        case kInt8Oid:
          out.values.emplace_back(static_cast<int64_t>(std::strtoll(v, nullptr, 10)));
          break;
        case kFloat4Oid:
        case kFloat8Oid:
        case kNumericOid:
          out.values.emplace_back(std::strtod(v, nullptr));
          break;
        case kBoolOid:
          out.values.emplace_back(static_cast<int64_t>(v[0] == 't' ? 1 : 0));
          break;
        default:
          out.values.emplace_back(std::string(v, static_cast<size_t>(PQgetlength(res, r, c))));
      }
    }
  }
  PQclear(res);
  return Status::Ok();
}

Status PgConnection::ExecuteRaw(const std::string& sql) {
  PGresult* res = PQexec(conn_, sql.c_str());
  Status s = ResultStatus(conn_, res);
  PQclear(res);
  return s;
}

Status PgConnection::Begin() { return ExecuteRaw("BEGIN"); }
Status PgConnection::Commit() {
  // COMMIT of a transaction that a failed statement aborted rolls back: report it.
  PGresult* res = PQexec(conn_, "COMMIT");
  Status s = ResultStatus(conn_, res);
  if (s.ok() && std::strcmp(PQcmdStatus(res), "ROLLBACK") == 0)
    s = Status::Error("the transaction was rolled back after a failed statement");
  PQclear(res);
  return s;
}
Status PgConnection::Rollback() { return ExecuteRaw("ROLLBACK"); }
bool PgConnection::InTransaction() const {
  const PGTransactionStatusType st = PQtransactionStatus(conn_);
  return st == PQTRANS_INTRANS || st == PQTRANS_INERROR || st == PQTRANS_ACTIVE;
}

std::string PgConnection::SequenceName(const std::string& table, const std::string& column) {
  std::string name = "xt_seq_" + table + "_" + column;
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

Status PgConnection::NewId(const std::string& table, const std::string& column, int32_t& id) {
  // Sequences never hand a value out twice, whatever other sessions do, and are not undone
  // by a rollback: keys may leave gaps but are never reused. A connection draws a block of
  // values in one round trip and hands them out one by one, so a save of many rows pays one
  // round trip per block, not per key.
  KeyBlock& block = key_blocks_[table + '\x01' + column];
  if (block.next >= block.values.size()) {
    RewrittenSql stmt;
    stmt.sql = "SELECT nextval(to_regclass($1)) FROM generate_series(1, $2)";
    stmt.params = {{SqlParam::Kind::Text, "\"" + SequenceName(table, column) + "\""},
                   {SqlParam::Kind::Integer, std::to_string(kKeyBlockSize)}};
    ResultSet rs;
    Status s = Query(stmt, rs);
    if (!s.ok()) return Status::Error("NewID(" + table + "," + column + "): " + s.message());
    if (rs.rows() == 0 || rs.values[0].IsNull())
      return Status::Error("NewID: no key source for " + table + "." + column);
    block.values.clear();
    for (const auto& v : rs.values) block.values.push_back(static_cast<int32_t>(v.ToDouble()));
    block.next = 0;
  }
  id = block.values[block.next++];
  return Status::Ok();
}

}  // namespace kvhost::db
