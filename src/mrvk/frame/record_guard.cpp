#include "mrvk/frame/record_guard.h"

namespace mrvk {

std::string RecordGuard::Rows(IHostDatabase& db, const std::vector<std::string>& statements,
                              std::string& error) {
  std::string rows;
  for (const std::string& sql : statements) {
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    error = db.Error().Description();
    if (!error.empty()) return "";
    for (; !rs->Eof(); rs->MoveNext()) {
      for (int i = 0; i < rs->FieldCount(); ++i) rows += rs->Fields(i).Value.ToString() + '\x1f';
      rows += '\n';
    }
    rows += '\x1e';
  }
  return rows;
}

void RecordGuard::Take(IHostDatabase& db, const std::vector<std::string>& statements) {
  std::string error;
  rows_ = Rows(db, statements, error);
}

RecordGuard::Outcome RecordGuard::Check(IHostDatabase& db, const std::string& table,
                                        const std::string& key_column, int32_t id,
                                        const std::vector<std::string>& statements,
                                        std::string& error) const {
  const std::string key = std::to_string(id);
  db.CreateCommand("update " + table + " set " + key_column + "=" + key_column + " where " +
                       key_column + "=" + key,
                   1)
      ->Execute();
  error = db.Error().Description();
  if (!error.empty()) return Outcome::kFailed;
  const std::string rows = Rows(db, statements, error);
  if (!error.empty()) return Outcome::kFailed;
  return !rows_.empty() && rows == rows_ ? Outcome::kUnchanged : Outcome::kChanged;
}

}  // namespace mrvk
