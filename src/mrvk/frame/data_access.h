// The module's side of data access: the one writer of values into SQL, the dialect test,
// scalar reads and the revision suffix of document numbers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

// The one writer of values into SQL: texts quoted, numbers through Val, dates from a parsed
// date in the dialect's form. Nothing typed reaches a statement any other way.

// A text made safe to stand between single quotes in a statement: every single quote is
// doubled. Every text a user typed goes through here before it is spliced into SQL.
std::string SqlText(std::string_view text);

// The text between single quotes: "'" + SqlText(text) + "'".
std::string SqlQuoted(std::string_view text);

// A typed number as SQL: Val of the text written by NumberText ("12abc" -> 12, "x" -> 0).
std::string SqlNumber(std::string_view text);

// A date as a literal of the dialect: #yyyy-mm-dd# on Jet, 'yyyy-mm-dd' otherwise.
std::string DateLiteral(Date date, bool jet);
void AppendDateLiteral(std::string& out, Date date, bool jet);

// The dialect test, made anew at each use: true when the connection property "driver" is
// exactly "jet" (so "Jet" or "jet 4.0" select the server dialect).
bool IsJet(const IHostDatabase& db);

// DateLiteral in the dialect of db's connection.
std::string DateLiteral(const IHostDatabase& db, Date date);

// A typed value of a search field's type as SQL (SqlQuoted, SqlNumber, DateLiteral); nullopt
// for a date value that ParseDate does not read as a date.
std::optional<std::string> SqlValue(std::string_view typed, SearchType type, bool jet);

// Reads one value: CreateCommand, ExecuteScalar, joined with "" (Null and Empty give "").
// A failed statement gives "" and leaves its text in db.Error().
std::string ScalarText(IHostDatabase& db, const std::string& sql);

// Calls Release on every way out of a procedure that opened commands, also when a run-time
// failure passes through on its way to the caller's handler.
class ReleaseOnExit {
 public:
  explicit ReleaseOnExit(IHostDatabase& db) : db_(db) {}
  ~ReleaseOnExit() { db_.Release(); }
  ReleaseOnExit(const ReleaseOnExit&) = delete;
  ReleaseOnExit& operator=(const ReleaseOnExit&) = delete;

 private:
  IHostDatabase& db_;
};

// The revision suffix a saved document number takes when the function's attribute
// "onsavecode" is 1: "HT2012" -> "HT2012-1", "HT2012-3" -> "HT2012-4", "A-B-3" -> "A-B-4",
// "A-" -> "A-1", "A-x" -> "A-1" (the part behind the last "-" read through Val, plus 1).
std::string ReviseBillNumber(const std::string& number);

// Whether the number of progID takes the revision suffix on saving an existing document:
// the text of xt_BillAttribute's 'onsavecode' row read as a number is 1.
bool RevisesOnSave(IHostDatabase& db, int32_t progID);

}  // namespace mrvk
