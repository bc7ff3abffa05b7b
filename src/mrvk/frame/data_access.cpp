#include "mrvk/frame/data_access.h"

#include "mrvk/frame/vb.h"

namespace mrvk {

std::string SqlText(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  for (char c : text) {
    out.push_back(c);
    if (c == '\'') out.push_back('\'');
  }
  return out;
}

std::string SqlQuoted(std::string_view text) { return "'" + SqlText(text) + "'"; }

bool IsJet(const IHostDatabase& db) {
  return db.Properties().Item("driver").Value.ToString() == "jet";
}

std::string DateLiteral(const IHostDatabase& db, std::string_view date_text) {
  const char* quote = IsJet(db) ? "#" : "'";
  return quote + SqlText(Trim(date_text)) + quote;
}

std::string ScalarText(IHostDatabase& db, const std::string& sql) {
  auto cmd = db.CreateCommand(sql, 1);
  return cmd->ExecuteScalar().ToString();
}

std::string ReviseBillNumber(const std::string& number) {
  const size_t dash = number.rfind('-');
  if (dash == std::string::npos) return number + "-1";
  const double next = Val(number.substr(dash + 1)) + 1;
  return number.substr(0, dash + 1) + NumberText(next);
}

bool RevisesOnSave(IHostDatabase& db, int32_t progID) {
  const std::string text =
      ScalarText(db, "SELECT text FROM xt_BillAttribute WHERE progID=" + std::to_string(progID) +
                         " and attribute='onsavecode' ");
  return Val(text) == 1;
}

}  // namespace mrvk
