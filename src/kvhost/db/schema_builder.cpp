#include "kvhost/db/schema_builder.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

#include "kvhost/db/pg_connection.h"
#include "kvhost/db/schema.h"

namespace kvhost::db {
namespace {

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

std::string TypeName(Dialect d, ColType t) {
  if (d == Dialect::Sqlite) {
    switch (t) {
      case ColType::Long:
      case ColType::Flag:
        return "INTEGER";
      case ColType::Double:
        return "REAL";
      default:
        return "TEXT";  // texts, and dates as "yyyy-mm-dd", which order as dates
    }
  }
  switch (t) {
    case ColType::Long:
    case ColType::Flag:
      return "integer";
    case ColType::Double:
      return "double precision";
    case ColType::Date:
      return "date";
    default:
      return "text COLLATE \"C\"";  // byte order, as on SQLite
  }
}

std::string ColumnDdl(Dialect d, const ColumnDef& c, bool key) {
  std::string s = std::string(c.name) + " " + TypeName(d, c.type);
  if (key) s += " NOT NULL PRIMARY KEY";
  if (!c.default_value.empty()) s += " DEFAULT " + std::string(c.default_value);
  return s;
}

// Host tables of our own, beside the ones the module reads.
const std::vector<TableDef>& HostTables() {
  static const std::vector<TableDef> tables = {
      {"xt_billcode",
       {{"progID", ColType::Long}, {"period", ColType::Text}, {"lastno", ColType::Long}}},
      {"xt_newid",
       {{"tablename", ColType::Text}, {"keyname", ColType::Text}, {"lastid", ColType::Long}}},
      // Who may sign in to the web client: the name, a salted slow hash of the password
      // (kvhost/web/password.h), a disabled flag, and whether the password must be changed at
      // the next sign-in (the administrator's one-time password).
      {"xt_user",
       {{"username", ColType::Text},
        {"pwhash", ColType::Text},
        {"disabled", ColType::Flag, "0"},
        {"mustchange", ColType::Flag, "0"}},
       "username"},
  };
  return tables;
}

class Builder {
 public:
  explicit Builder(Connection& conn)
      : conn_(conn), rewriter_(conn.dialect(), SchemaColumnTypes()) {}

  Status Run() {
    Status s = conn_.Begin();
    if (!s.ok()) return s;
    s = Steps();
    if (!s.ok()) {
      if (Status undone = conn_.Rollback(); !undone.ok())
        return Status::Error(s.message() + "; rollback: " + undone.message());
      return s;
    }
    return conn_.Commit();
  }

 private:
  Status Steps() {
    if (conn_.dialect() == Dialect::Postgres) {
      // Two processes setting up the same database wait for each other.
      if (Status s = Raw("SELECT pg_advisory_xact_lock(870000)"); !s.ok()) return s;
    }
    for (const auto* list : {&Tables(), &HostTables()}) {
      for (const TableDef& t : *list) {
        if (Status s = Table(t); !s.ok()) return s;
      }
    }
    if (Status s = Raw(HostIndexes()); !s.ok()) return s;
    int n = 0;
    for (const IndexDef& ix : Indexes()) {
      std::string name = "ix_" + Lower(ix.table) + "_" + std::to_string(++n);
      if (Status s = Raw("CREATE INDEX IF NOT EXISTS " + name + " ON " + std::string(ix.table) +
                         " (" + std::string(ix.columns) + ")");
          !s.ok())
        return s;
    }
    if (conn_.dialect() == Dialect::Postgres) {
      if (Status s = Raw(PostgresFunctions()); !s.ok()) return s;
    }
    for (const RetiredRows& gone : Retired()) {
      if (Status s = Rewritten(
              "DELETE FROM " + std::string(gone.table) + " WHERE " + std::string(gone.where),
              nullptr);
          !s.ok())
        return s;
    }
    for (const SeedRow& row : SeedRows()) {
      if (Status s = Seed(row); !s.ok()) return s;
    }
    for (const KeyDef& k : NewIdKeys()) {
      if (Status s = KeySource(k); !s.ok()) return s;
    }
    return Status::Ok();
  }

  Status Raw(const std::string& sql) {
    Status s = conn_.ExecuteRaw(sql);
    if (!s.ok()) return Status::Error(s.message() + " [" + sql.substr(0, 200) + "]");
    return s;
  }

  Status Query(const std::string& sql, ResultSet& out) {
    RewrittenSql stmt;
    stmt.sql = sql;
    Status s = conn_.Query(stmt, out);
    if (!s.ok()) return Status::Error(s.message() + " [" + sql.substr(0, 200) + "]");
    return s;
  }

  // The lower-cased names of the columns the table has now; empty when it does not exist.
  Status ExistingColumns(const TableDef& t, std::set<std::string>& cols) {
    ResultSet rs;
    std::string sql;
    if (conn_.dialect() == Dialect::Sqlite) {
      sql = "SELECT name FROM pragma_table_info('" + std::string(t.name) + "')";
    } else {
      sql =
          "SELECT column_name FROM information_schema.columns WHERE table_schema = "
          "current_schema() AND table_name = '" +
          Lower(t.name) + "'";
    }
    if (Status s = Query(sql, rs); !s.ok()) return s;
    for (const auto& v : rs.values) cols.insert(Lower(v.ToString()));
    return Status::Ok();
  }

  Status Table(const TableDef& t) {
    std::set<std::string> existing;
    if (Status s = ExistingColumns(t, existing); !s.ok()) return s;
    const Dialect d = conn_.dialect();
    if (existing.empty()) {
      std::string sql = "CREATE TABLE " + std::string(t.name) + " (";
      for (size_t i = 0; i < t.columns.size(); ++i) {
        if (i) sql += ", ";
        sql += ColumnDdl(d, t.columns[i], !t.key.empty() && t.columns[i].name == t.key);
      }
      sql += ")";
      return Raw(sql);
    }
    // An older database: add what is missing, keep what is there.
    for (const ColumnDef& c : t.columns) {
      if (existing.count(Lower(c.name))) continue;
      if (Status s = Raw("ALTER TABLE " + std::string(t.name) + " ADD COLUMN " +
                         ColumnDdl(d, c, /*key=*/false));
          !s.ok())
        return s;
    }
    return Status::Ok();
  }

  static std::string HostIndexes() {
    return "CREATE UNIQUE INDEX IF NOT EXISTS ux_xt_billcode ON xt_billcode (progID, period);"
           "CREATE UNIQUE INDEX IF NOT EXISTS ux_xt_newid ON xt_newid (tablename, keyname)";
  }

  // Splits "1,'a,b',#2012-01-01#" at the commas outside literals.
  static std::vector<std::string> SplitValues(std::string_view values) {
    std::vector<std::string> out(1);
    char quote = 0;
    for (char c : values) {
      if (quote) {
        if (c == quote) quote = 0;
      } else if (c == '\'' || c == '#') {
        quote = c;
      } else if (c == ',') {
        out.emplace_back();
        continue;
      }
      out.back().push_back(c);
    }
    return out;
  }

  Status Seed(const SeedRow& row) {
    std::vector<std::string> cols;
    for (std::string c : SplitValues(row.columns)) {
      c.erase(std::remove(c.begin(), c.end(), ' '), c.end());
      cols.push_back(c);
    }
    const std::vector<std::string> vals = SplitValues(row.values);
    if (cols.size() != vals.size())
      return Status::Error("seed row of " + std::string(row.table) + ": " +
                           std::to_string(cols.size()) + " columns but " +
                           std::to_string(vals.size()) + " values");
    std::string where;
    for (int i = 0; i < row.key_columns && i < static_cast<int>(cols.size()); ++i) {
      where +=
          (i ? " and " : "") + cols[static_cast<size_t>(i)] + "=" + vals[static_cast<size_t>(i)];
    }
    ResultSet rs;
    if (Status s =
            Rewritten("select count(*) from " + std::string(row.table) + " where " + where, &rs);
        !s.ok())
      return s;
    if (rs.values.empty() || rs.values[0].ToDouble() > 0) return Status::Ok();
    return Rewritten("insert into " + std::string(row.table) + " (" + std::string(row.columns) +
                         ") values (" + std::string(row.values) + ")",
                     nullptr);
  }

  Status Rewritten(const std::string& sql, ResultSet* rows) {
    RewrittenSql stmt;
    std::string why;
    if (!rewriter_.Rewrite(sql, stmt, why)) return Status::Error(why + " [" + sql + "]");
    Status s = rows ? conn_.Query(stmt, *rows) : conn_.Execute(stmt, nullptr);
    if (!s.ok()) return Status::Error(s.message() + " [" + sql + "]");
    return s;
  }

  Status KeySource(const KeyDef& k) {
    const std::string table(k.table), col(k.column);
    const std::string max = "(SELECT COALESCE(MAX(" + col + "),0) FROM " + table + ")";
    if (conn_.dialect() == Dialect::Sqlite) {
      return Raw("INSERT OR IGNORE INTO xt_newid (tablename, keyname, lastid) VALUES ('" + table +
                 "','" + col + "',0); UPDATE xt_newid SET lastid = " + max + " WHERE tablename='" +
                 table + "' AND keyname='" + col + "' AND lastid < " + max);
    }
    const std::string seq = "\"" + PgConnection::SequenceName(table, col) + "\"";
    ResultSet rs;
    if (Status s = Raw("CREATE SEQUENCE IF NOT EXISTS " + seq + " MINVALUE 1 MAXVALUE 2147483647");
        !s.ok())
      return s;
    return Query(
        "SELECT setval('" + seq + "', GREATEST(" + max + ", (SELECT last_value FROM " + seq + ")))",
        rs);
  }

  // Jet's functions that the module's statements use, with Jet's meaning.
  static std::string PostgresFunctions() {
    return R"SQL(
CREATE OR REPLACE FUNCTION val(text) RETURNS double precision LANGUAGE plpgsql IMMUTABLE STRICT AS $$
DECLARE
  s text := translate($1, E' \t\r\n', '');
  base integer;
  digit integer;
  v bigint := 0;
  m text[];
BEGIN
  -- "&H" and "&O": hexadecimal and octal digits up to the first other character.
  IF s ~* '^&[ho]' THEN
    base := CASE WHEN substr(s, 2, 1) IN ('h', 'H') THEN 16 ELSE 8 END;
    FOR i IN 3..length(s) LOOP
      digit := position(lower(substr(s, i, 1)) IN '0123456789abcdef') - 1;
      EXIT WHEN digit < 0 OR digit >= base;
      v := v * base + digit;
      EXIT WHEN v > 4294967295;
    END LOOP;
    RETURN v;
  END IF;
  -- A sign, digits with one point, an exponent written with E or D.
  m := regexp_match(s, '^([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+))(?:[eEdD]([+-]?[0-9]+))?');
  IF m IS NULL THEN
    RETURN 0;
  END IF;
  -- Well inside a double's range no error can come, so no guard is needed there.
  IF (CASE WHEN length(m[1]) > 100 THEN false
           WHEN m[2] IS NULL THEN true
           WHEN length(m[2]) > 4 THEN false
           ELSE abs(m[2]::integer) <= 200 END) THEN
    RETURN (m[1] || COALESCE('e' || m[2], ''))::double precision;
  END IF;
  BEGIN
    RETURN (m[1] || COALESCE('e' || m[2], ''))::double precision;
  EXCEPTION WHEN numeric_value_out_of_range OR invalid_text_representation THEN
    RETURN 0;  -- beyond a double, as the host's Val gives
  END;
END $$;
CREATE OR REPLACE FUNCTION val(double precision) RETURNS double precision LANGUAGE sql IMMUTABLE AS $$ SELECT $1 $$;
CREATE OR REPLACE FUNCTION len(text) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT length($1) $$;
CREATE OR REPLACE FUNCTION mid(text, integer, integer) RETURNS text LANGUAGE plpgsql IMMUTABLE STRICT AS $$
BEGIN
  IF $2 < 1 THEN
    RAISE EXCEPTION 'Mid: invalid start %', $2;
  END IF;
  IF $3 < 0 THEN
    RAISE EXCEPTION 'Mid: invalid length %', $3;
  END IF;
  RETURN substr($1, $2, $3);
END $$;
CREATE OR REPLACE FUNCTION mid(text, integer) RETURNS text LANGUAGE plpgsql IMMUTABLE STRICT AS $$
BEGIN
  IF $2 < 1 THEN
    RAISE EXCEPTION 'Mid: invalid start %', $2;
  END IF;
  RETURN substr($1, $2);
END $$;
-- A date written as the host reads one (yyyy-mm-dd, also with "/" or "." and one-digit
-- months and days, a time part after it ignored); Null when it is no real date.
CREATE OR REPLACE FUNCTION text_date(text) RETURNS date LANGUAGE plpgsql IMMUTABLE STRICT AS $$
DECLARE
  m text[] := regexp_match($1, '^ *([0-9]{4})([-/.])([0-9]{1,2})\2([0-9]{1,2})(?:[ T][0-9:.+-]*)? *$');
  y integer;
  mo integer;
  d integer;
BEGIN
  IF m IS NULL THEN
    RETURN NULL;
  END IF;
  y := m[1]::integer;
  mo := m[3]::integer;
  d := m[4]::integer;
  IF y < 1 OR mo < 1 OR mo > 12 OR d < 1 OR
     d > extract(day FROM make_date(y, mo, 1) + interval '1 month - 1 day') THEN
    RETURN NULL;
  END IF;
  RETURN make_date(y, mo, d);
END $$;
CREATE OR REPLACE FUNCTION year(date) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT extract(year FROM $1)::integer $$;
CREATE OR REPLACE FUNCTION month(date) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT extract(month FROM $1)::integer $$;
CREATE OR REPLACE FUNCTION day(date) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT extract(day FROM $1)::integer $$;
CREATE OR REPLACE FUNCTION year(text) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT extract(year FROM text_date($1))::integer $$;
CREATE OR REPLACE FUNCTION month(text) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT extract(month FROM text_date($1))::integer $$;
CREATE OR REPLACE FUNCTION day(text) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT extract(day FROM text_date($1))::integer $$;
)SQL";
  }

  Connection& conn_;
  SqlRewriter rewriter_;
};

}  // namespace

Status CreateSchema(Connection& conn) { return Builder(conn).Run(); }

}  // namespace kvhost::db
