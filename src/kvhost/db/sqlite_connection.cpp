#include "kvhost/db/sqlite_connection.h"

#include <sqlite3.h>

#include <cstring>
#include <ctime>

#include "mrvk/frame/vb.h"

namespace kvhost::db {
namespace {

constexpr size_t kStatementCacheSize = 256;
constexpr int kBusyTimeoutMs = 30000;
constexpr int64_t kKeyBlockSize = 32;

std::string ErrorText(sqlite3* db) { return sqlite3_errmsg(db); }

const char* ArgText(sqlite3_value* v) {
  const unsigned char* t = sqlite3_value_text(v);
  return t ? reinterpret_cast<const char*>(t) : "";
}

// Number of UTF-8 characters before byte offset `bytes`.
size_t Utf8Advance(const std::string& s, size_t pos, long chars) {
  while (pos < s.size() && chars > 0) {
    ++pos;
    while (pos < s.size() && (static_cast<unsigned char>(s[pos]) & 0xC0) == 0x80) ++pos;
    --chars;
  }
  return pos;
}

size_t Utf8Length(const std::string& s) {
  size_t n = 0;
  for (unsigned char c : s) n += (c & 0xC0) != 0x80;
  return n;
}

void ResultText(sqlite3_context* ctx, const std::string& s) {
  sqlite3_result_text(ctx, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
}

// Jet's functions that the module's statements use, with Jet's meaning.
void FnVal(sqlite3_context* ctx, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) return sqlite3_result_null(ctx);
  sqlite3_result_double(ctx, mrvk::Val(ArgText(argv[0])));
}

void FnLen(sqlite3_context* ctx, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) return sqlite3_result_null(ctx);
  sqlite3_result_int64(ctx, static_cast<sqlite3_int64>(Utf8Length(ArgText(argv[0]))));
}

void FnLeft(sqlite3_context* ctx, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) return sqlite3_result_null(ctx);
  const std::string s = ArgText(argv[0]);
  ResultText(ctx, s.substr(0, Utf8Advance(s, 0, sqlite3_value_int(argv[1]))));
}

void FnRight(sqlite3_context* ctx, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) return sqlite3_result_null(ctx);
  const std::string s = ArgText(argv[0]);
  const long len = static_cast<long>(Utf8Length(s));
  const long n = sqlite3_value_int(argv[1]);
  ResultText(ctx, s.substr(Utf8Advance(s, 0, n >= len ? 0 : len - n)));
}

// Mid(s, start[, length]): a start before the first character or a negative length fails the
// statement, as Jet refuses them (the PostgreSQL function says the same words).
void FnMid(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  for (int i = 0; i < argc; ++i)
    if (sqlite3_value_type(argv[i]) == SQLITE_NULL) return sqlite3_result_null(ctx);
  const std::string s = ArgText(argv[0]);
  const long start = sqlite3_value_int(argv[1]);
  if (start < 1) {
    const std::string error = "Mid: invalid start " + std::to_string(start);
    return sqlite3_result_error(ctx, error.c_str(), -1);
  }
  const long length = argc > 2 ? sqlite3_value_int(argv[2]) : 0;
  if (length < 0) {
    const std::string error = "Mid: invalid length " + std::to_string(length);
    return sqlite3_result_error(ctx, error.c_str(), -1);
  }
  const size_t from = Utf8Advance(s, 0, start - 1);
  const size_t to = argc > 2 ? Utf8Advance(s, from, length) : s.size();
  ResultText(ctx, s.substr(from, to - from));
}

// Year, Month and Day of a text that is no real date (the 30th of February) give Null.
void DatePart(sqlite3_context* ctx, sqlite3_value* v, int part) {
  if (sqlite3_value_type(v) == SQLITE_NULL) return sqlite3_result_null(ctx);
  auto d = mrvk::ParseDate(ArgText(v));
  if (!d) return sqlite3_result_null(ctx);
  sqlite3_result_int(ctx, part == 0 ? d->year() : part == 1 ? d->month() : d->day());
}
void FnYear(sqlite3_context* ctx, int, sqlite3_value** argv) { DatePart(ctx, argv[0], 0); }
void FnMonth(sqlite3_context* ctx, int, sqlite3_value** argv) { DatePart(ctx, argv[0], 1); }
void FnDay(sqlite3_context* ctx, int, sqlite3_value** argv) { DatePart(ctx, argv[0], 2); }

// Now() and Date() are the host's local time (SQLite's own date() would be UTC).
void LocalTime(sqlite3_context* ctx, const char* format) {
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char buf[32];
  std::strftime(buf, sizeof buf, format, &tm);
  ResultText(ctx, buf);
}
void FnNow(sqlite3_context* ctx, int, sqlite3_value**) { LocalTime(ctx, "%Y-%m-%d %H:%M:%S"); }
void FnDate(sqlite3_context* ctx, int, sqlite3_value**) { LocalTime(ctx, "%Y-%m-%d"); }

struct FunctionDef {
  const char* name;
  int args;
  void (*fn)(sqlite3_context*, int, sqlite3_value**);
  bool deterministic;
};

constexpr FunctionDef kFunctions[] = {
    {"val", 1, FnVal, true},     {"len", 1, FnLen, true},     {"left", 2, FnLeft, true},
    {"right", 2, FnRight, true}, {"mid", 2, FnMid, true},     {"mid", 3, FnMid, true},
    {"year", 1, FnYear, true},   {"month", 1, FnMonth, true}, {"day", 1, FnDay, true},
    {"now", 0, FnNow, false},    {"date", 0, FnDate, false},
};

}  // namespace

SqliteConnection::~SqliteConnection() {
  // Closing commits the writes of a group; a failure here has nobody left to tell, and
  // sqlite3_close_v2 rolls back whatever stays open.
  (void)Flush();
  for (auto& [sql, entry] : cache_) sqlite3_finalize(entry.stmt);
  // The planner's statistics of the tables this connection searched by an index, as SQLite
  // advises at close (bounded work): without them a lookup by code or name (the pickers'
  // check of a typed text) walks the index of 类型 instead, milliseconds on 50,000 parties.
  if (db_)
    sqlite3_exec(db_, "PRAGMA analysis_limit=1000; PRAGMA optimize;", nullptr, nullptr, nullptr);
  if (db_) sqlite3_close_v2(db_);
}

std::unique_ptr<SqliteConnection> SqliteConnection::Open(const std::string& path,
                                                         std::string& error) {
  auto conn = std::unique_ptr<SqliteConnection>(new SqliteConnection());
  const bool memory = path.empty() || path == ":memory:";
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (sqlite3_open_v2(memory ? ":memory:" : path.c_str(), &conn->db_, flags, nullptr) !=
      SQLITE_OK) {
    error = "cannot open " + path + ": " + (conn->db_ ? ErrorText(conn->db_) : "out of memory");
    return nullptr;
  }
  sqlite3_busy_timeout(conn->db_, kBusyTimeoutMs);
  sqlite3_extended_result_codes(conn->db_, 1);
  for (const FunctionDef& f : kFunctions) {
    sqlite3_create_function(conn->db_, f.name, f.args,
                            SQLITE_UTF8 | (f.deterministic ? SQLITE_DETERMINISTIC : 0), nullptr,
                            f.fn, nullptr, nullptr);
  }
  // WAL lets readers go on while one clerk saves; synchronous=NORMAL keeps the database
  // consistent after a crash and loses at most the last commits on a power cut.
  const char* settings = memory ? "PRAGMA foreign_keys=OFF;"
                                : "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; "
                                  "PRAGMA foreign_keys=OFF;";
  Status s = conn->ExecuteRaw(settings);
  if (!s.ok()) {
    error = "cannot open " + path + ": " + s.message();
    return nullptr;
  }
  return conn;
}

Status SqliteConnection::Prepare(const RewrittenSql& stmt, sqlite3_stmt*& out) {
  ++tick_;
  const std::string key = stmt.shape_id ? "#" + std::to_string(stmt.shape_id) : stmt.sql;
  auto it = cache_.find(key);
  if (it != cache_.end()) {
    it->second.last_use = tick_;
    out = it->second.stmt;
  } else {
    if (cache_.size() >= kStatementCacheSize) {
      auto oldest = cache_.begin();
      for (auto i = cache_.begin(); i != cache_.end(); ++i)
        if (i->second.last_use < oldest->second.last_use) oldest = i;
      sqlite3_finalize(oldest->second.stmt);
      cache_.erase(oldest);
    }
    const char* tail = nullptr;
    if (sqlite3_prepare_v3(db_, stmt.sql.c_str(), static_cast<int>(stmt.sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &out, &tail) != SQLITE_OK) {
      return Status::Error(ErrorText(db_));
    }
    if (!out) return Status::Error("empty statement");
    cache_.emplace(key, CacheEntry{out, tick_});
  }
  sqlite3_reset(out);
  sqlite3_clear_bindings(out);
  if (sqlite3_bind_parameter_count(out) != static_cast<int>(stmt.params.size()))
    return Status::Error("parameter count mismatch");
  for (size_t i = 0; i < stmt.params.size(); ++i) {
    const SqlParam& p = stmt.params[i];
    const int pos = static_cast<int>(i + 1);
    int rc = SQLITE_OK;
    switch (p.kind) {
      case SqlParam::Kind::Integer:
        rc = sqlite3_bind_int64(out, pos, std::strtoll(p.text.c_str(), nullptr, 10));
        break;
      case SqlParam::Kind::Real:
        rc = sqlite3_bind_double(out, pos, std::strtod(p.text.c_str(), nullptr));
        break;
      case SqlParam::Kind::Text:
        rc = sqlite3_bind_text(out, pos, p.text.data(), static_cast<int>(p.text.size()),
                               SQLITE_STATIC);
        break;
      case SqlParam::Kind::Null:
        rc = sqlite3_bind_null(out, pos);
        break;
    }
    if (rc != SQLITE_OK) return Status::Error(ErrorText(db_));
  }
  return Status::Ok();
}

Status SqliteConnection::Execute(const RewrittenSql& stmt, int64_t* rows_affected) {
  if (group_commit_ && !explicit_ && !implicit_) {
    // The first write of a group opens the transaction that the group's end commits.
    Status s = ExecuteRaw("BEGIN IMMEDIATE");
    if (!s.ok()) return s;
    implicit_ = true;
  }
  sqlite3_stmt* st = nullptr;
  Status s = Prepare(stmt, st);
  if (!s.ok()) return s;
  int rc;
  while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
  }
  if (rc != SQLITE_DONE) {
    Status err = Status::Error(ErrorText(db_));
    sqlite3_reset(st);
    // Most failures undo only the statement; a few (disk full, I/O) undo the transaction.
    if ((implicit_ || explicit_) && sqlite3_get_autocommit(db_)) {
      implicit_ = false;
      explicit_ = false;
      key_blocks_.clear();
    }
    return err;
  }
  if (rows_affected) *rows_affected = sqlite3_changes64(db_);
  sqlite3_reset(st);
  return Status::Ok();
}

Status SqliteConnection::Query(const RewrittenSql& stmt, ResultSet& out) {
  out = ResultSet{};
  sqlite3_stmt* st = nullptr;
  Status s = Prepare(stmt, st);
  if (!s.ok()) return s;
  const int cols = sqlite3_column_count(st);
  for (int c = 0; c < cols; ++c) out.columns.emplace_back(sqlite3_column_name(st, c));
  int rc;
  while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
    for (int c = 0; c < cols; ++c) {
      switch (sqlite3_column_type(st, c)) {
        case SQLITE_INTEGER:
          out.values.emplace_back(static_cast<int64_t>(sqlite3_column_int64(st, c)));
          break;
        case SQLITE_FLOAT:
          out.values.emplace_back(sqlite3_column_double(st, c));
          break;
        case SQLITE_NULL:
          out.values.push_back(mrvk::Variant::Null());
          break;
        default: {
          const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(st, c));
          out.values.emplace_back(
              std::string(text, static_cast<size_t>(sqlite3_column_bytes(st, c))));
        }
      }
    }
  }
  if (rc != SQLITE_DONE) {
    Status err = Status::Error(ErrorText(db_));
    sqlite3_reset(st);
    out = ResultSet{};
    return err;
  }
  sqlite3_reset(st);
  return Status::Ok();
}

Status SqliteConnection::ExecuteRaw(const std::string& sql) {
  char* msg = nullptr;
  if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &msg) != SQLITE_OK) {
    std::string text = msg ? msg : ErrorText(db_);
    sqlite3_free(msg);
    return Status::Error(text);
  }
  return Status::Ok();
}

Status SqliteConnection::Begin() {
  if (Status s = Flush(); !s.ok()) return s;
  Status s = ExecuteRaw("BEGIN IMMEDIATE");
  explicit_ = s.ok();
  return s;
}

Status SqliteConnection::Commit() {
  explicit_ = false;
  Status s = ExecuteRaw("COMMIT");
  if (s.ok()) return s;
  key_blocks_.clear();
  // A refused COMMIT leaves the transaction open, and with it the write lock: undo it, so
  // that a bracket always ends here.
  if (!sqlite3_get_autocommit(db_)) {
    Status undone = ExecuteRaw("ROLLBACK");
    return Status::Error(s.message() + "; the transaction was rolled back" +
                         (undone.ok() ? std::string() : " (" + undone.message() + ")"));
  }
  return s;
}

Status SqliteConnection::Rollback() {
  explicit_ = false;
  key_blocks_.clear();
  return ExecuteRaw("ROLLBACK");
}

bool SqliteConnection::InTransaction() const { return !implicit_ && !sqlite3_get_autocommit(db_); }

void SqliteConnection::SetGroupCommit(bool on) {
  // The host flushes before it turns grouping off and reports a failure; a commit that fails
  // here is undone by Flush all the same, so no lock outlives the call.
  if (!on) (void)Flush();
  group_commit_ = on;
}

Status SqliteConnection::Flush() {
  if (!implicit_) return Status::Ok();
  implicit_ = false;
  Status s = ExecuteRaw("COMMIT");
  if (!s.ok()) {
    key_blocks_.clear();
    // The COMMIT failed with the group still open: undo it, so no lock outlives the call.
    if (!sqlite3_get_autocommit(db_)) {
      if (Status undone = ExecuteRaw("ROLLBACK"); !undone.ok())
        return Status::Error(s.message() + "; " + undone.message());
    }
  }
  return s;
}

Status SqliteConnection::NewId(const std::string& table, const std::string& column, int32_t& id) {
  // The counter row is raised by a block of keys in one statement; the keys are handed out
  // one by one. SQLite has one writer at a time, so the raise is atomic. A rollback undoes
  // the raise, so Rollback forgets the block: its keys may be drawn again by anyone.
  KeyBlock& block = key_blocks_[table + '\x01' + column];
  if (block.next > block.last) {
    RewrittenSql stmt;
    stmt.sql =
        "UPDATE xt_newid SET lastid=lastid+? WHERE tablename=? AND keyname=? RETURNING lastid";
    stmt.params = {{SqlParam::Kind::Integer, std::to_string(kKeyBlockSize)},
                   {SqlParam::Kind::Text, table},
                   {SqlParam::Kind::Text, column}};
    ResultSet rs;
    Status s = Query(stmt, rs);
    if (!s.ok()) return Status::Error("NewID(" + table + "," + column + "): " + s.message());
    if (rs.rows() == 0) return Status::Error("NewID: no key source for " + table + "." + column);
    block.last = static_cast<int64_t>(rs.values[0].ToDouble());
    block.next = block.last - kKeyBlockSize + 1;
  }
  id = static_cast<int32_t>(block.next++);
  return Status::Ok();
}

}  // namespace kvhost::db
