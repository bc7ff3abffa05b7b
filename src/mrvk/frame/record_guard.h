// The guard against lost updates: a sheet remembers the rows of the record it shows, and its
// save, inside its bracket and before its first write, takes the record's row lock and
// compares the rows again. A record another person saved (or deleted) in between is then
// refused instead of being overwritten with what this clerk saw.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

// The refusal of a save over a record that another person saved since it was shown.
inline constexpr const char* kChangedByOthers = "该记录已被他人修改，请刷新后再保存。";

class RecordGuard {
 public:
  enum class Outcome { kUnchanged, kChanged, kFailed };

  // Remembers the rows the statements give now: the record as the sheet shows it. A failed
  // statement remembers nothing (the next Check then answers kChanged).
  void Take(IHostDatabase& db, const std::vector<std::string>& statements);
  // Forgets the record (a new one is being entered).
  void Forget() { rows_.clear(); }
  // Inside the save's bracket: writes the record's key onto itself, which takes its row
  // lock, so that a second save of the record waits for this one and then reads what it
  // wrote; then reads the statements again. kUnchanged when they give what Take remembered;
  // kChanged when not; kFailed with the database's text in `error` when a statement failed.
  Outcome Check(IHostDatabase& db, const std::string& table, const std::string& key_column,
                int32_t id, const std::vector<std::string>& statements, std::string& error) const;

 private:
  // The rows as one text: fields separated by \x1f, rows by \n, statements by \x1e.
  static std::string Rows(IHostDatabase& db, const std::vector<std::string>& statements,
                          std::string& error);

  std::string rows_;
};

}  // namespace mrvk
