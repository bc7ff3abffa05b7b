// The SQL rewriter: turns the Jet-flavoured statements of the module into the statement an
// engine runs. It tokenizes the text, rewrites exactly the idioms the module writes (`top n`,
// `#date#` literals, `+` and `&` joining texts, bracketed names, double-quoted texts, Jet's
// date functions), and lifts the literals of comparisons, VALUES lists and SET clauses into
// parameters so that one prepared statement serves every statement of the same shape.
// String literals are never looked into; anything it does not know is refused with a clear
// error and never passed on changed in meaning.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvhost/db/schema.h"

namespace kvhost::db {

enum class Dialect {
  Sqlite,    // the embedded engine, playing the Jet file database
  Postgres,  // the server engine
};

// A literal lifted out of a statement.
struct SqlParam {
  enum class Kind { Integer, Real, Text, Null };
  Kind kind = Kind::Text;
  std::string text;  // the literal's value: digits for numbers, the unquoted text for texts
};

struct RewrittenSql {
  std::string sql;  // with ? (SQLite) or $n (PostgreSQL) where a literal was lifted
  std::vector<SqlParam> params;
  bool is_select = false;  // the statement yields rows (SELECT)
};

// Tells the type of a column name, or nullopt when the name is unknown or has different
// types in different tables.
using ColumnTypeLookup = std::function<std::optional<ColType>(std::string_view name)>;

// The column types of the schema (Tables()), names without regard to ASCII case.
ColumnTypeLookup SchemaColumnTypes();

class SqlRewriter {
 public:
  SqlRewriter(Dialect dialect, ColumnTypeLookup column_types);

  // Rewrites one statement. On success returns true and fills out; on a statement it cannot
  // rewrite faithfully returns false and sets error to a one-line reason (out is then
  // unspecified). Never throws for any input.
  bool Rewrite(std::string_view sql, RewrittenSql& out, std::string& error) const;

 private:
  Dialect dialect_;
  ColumnTypeLookup column_types_;
};

}  // namespace kvhost::db
