// The SQL rewriter: turns the Jet-flavoured statements of the module into the statement an
// engine runs. It tokenizes the text, rewrites exactly the idioms the module writes (`top n`,
// `#date#` literals, `+` and `&` joining texts, bracketed names, double-quoted texts, Jet's
// date functions), and lifts the literals of comparisons, VALUES lists and SET clauses into
// parameters so that one prepared statement serves every statement of the same shape.
// String literals are never looked into; anything it does not know is refused with a clear
// error and never passed on changed in meaning.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
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
  // Statements of one shape rewritten by one rewriter share this number, unique in the process
  // (never 0), so an engine can find its prepared statement without hashing the text. 0 for
  // texts of our own and for statements that keep a literal in their text (a select list's
  // 'x', the 3 of mid(s,3,2)): those differ by more than their parameters, so their text is
  // the key.
  uint64_t shape_id = 0;
};

// Tells the type of a column name, or nullopt when the name is unknown or has different
// types in different tables.
using ColumnTypeLookup = std::function<std::optional<ColType>(std::string_view name)>;

// The column types of the schema (Tables()), names without regard to ASCII case.
ColumnTypeLookup SchemaColumnTypes();

struct Token;    // a token of a statement, in the rewriter's implementation
struct Literal;  // a literal of a statement, likewise

class SqlRewriter {
 public:
  SqlRewriter(Dialect dialect, ColumnTypeLookup column_types);

  // Rewrites one statement. On success returns true and fills out; on a statement it cannot
  // rewrite faithfully returns false and sets error to a one-line reason (out is then
  // unspecified). Never throws for any input.
  // Statements of a shape seen before (the same text but for the literals) reuse the
  // rewriting worked out the first time.
  bool Rewrite(std::string_view sql, RewrittenSql& out, std::string& error) const;

  struct Plan;

 private:
  static constexpr size_t kMaxPlans = 1024;
  bool BuildPlan(std::vector<Token>& toks, Plan& plan, std::string& error) const;
  bool Apply(const Plan& plan, const std::vector<Literal>& literals, RewrittenSql& out,
             std::string& error) const;

  Dialect dialect_;
  ColumnTypeLookup column_types_;
  mutable std::unordered_map<std::string, std::shared_ptr<const Plan>> plans_;
};

}  // namespace kvhost::db
