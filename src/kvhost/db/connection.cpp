#include "kvhost/db/connection.h"

#include "kvhost/db/pg_connection.h"
#include "kvhost/db/sqlite_connection.h"

namespace kvhost::db {

std::unique_ptr<Connection> OpenConnection(const std::string& url, std::string& error) {
  static const std::string kSqlite = "sqlite://";
  if (url.rfind(kSqlite, 0) == 0) return SqliteConnection::Open(url.substr(kSqlite.size()), error);
  if (url.rfind("postgresql://", 0) == 0 || url.rfind("postgres://", 0) == 0)
    return PgConnection::Open(url, error);
  error = "unknown database URL \"" + url +
          "\": use sqlite:///path/file.sqlite3, sqlite:// (in memory) or postgresql://...";
  return nullptr;
}

}  // namespace kvhost::db
