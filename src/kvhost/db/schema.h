// The database schema as data: every table of the module and of the host, its columns with
// their kinds, the indexes for the joins, filters and key navigation, and the seed rows.
// The engines turn it into their own DDL (schema_builder.*).
#pragma once

#include <string_view>
#include <vector>

namespace kvhost::db {

enum class ColType {
  Long,    // 32-bit integer: keys, IDs, counts, progID
  Flag,    // 0/1 (stored as a small integer)
  Double,  // numbers with decimals: money, areas, readings, months
  Text,    // short text: codes, names, marks
  Memo,    // long text: remarks, clauses
  Date,    // a calendar date, read back as "yyyy-mm-dd"
};

struct ColumnDef {
  std::string_view name;
  ColType type;
  // A literal default in SQL (for example "0" or "''"), or empty for none.
  std::string_view default_value = {};
};

struct TableDef {
  std::string_view name;
  std::vector<ColumnDef> columns;
  // The primary key column; empty for tables without one.
  std::string_view key = {};
};

struct IndexDef {
  std::string_view table;
  std::string_view columns;  // comma-separated column list
};

// One seed row: inserted when no row of `table` has the same values in the first
// `key_columns` columns, so seeding is idempotent and never overwrites what users changed.
struct SeedRow {
  std::string_view table;
  std::string_view columns;  // comma-separated
  std::string_view values;   // comma-separated SQL literals in the Jet flavour
  int key_columns = 1;
};

// Rows an earlier version seeded that are gone now (a function moved to another key):
// deleted before seeding, so a database made by that version is brought up to date.
struct RetiredRows {
  std::string_view table;
  std::string_view where;  // the condition, in the Jet flavour
};

// The table/key pairs whose keys come from NewID.
struct KeyDef {
  std::string_view table;
  std::string_view column;
};

const std::vector<TableDef>& Tables();
const std::vector<IndexDef>& Indexes();
const std::vector<SeedRow>& SeedRows();
const std::vector<RetiredRows>& Retired();
const std::vector<KeyDef>& NewIdKeys();

}  // namespace kvhost::db
