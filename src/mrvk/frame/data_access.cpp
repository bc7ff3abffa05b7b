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

std::string SqlNumber(std::string_view text) { return NumberText(Val(text)); }

void AppendDateLiteral(std::string& out, Date date, bool jet) {
  const char quote = jet ? '#' : '\'';
  out += quote;
  out += date.ToText();
  out += quote;
}

std::string DateLiteral(Date date, bool jet) {
  std::string out;
  AppendDateLiteral(out, date, jet);
  return out;
}

bool IsJet(const IHostDatabase& db) {
  return db.Properties().Item("driver").Value.ToString() == "jet";
}

std::string DateLiteral(const IHostDatabase& db, Date date) { return DateLiteral(date, IsJet(db)); }

std::optional<std::string> SqlValue(std::string_view typed, SearchType type, bool jet) {
  switch (type) {
    case SearchType::kNumber:
      return SqlNumber(typed);
    case SearchType::kDate: {
      const std::optional<Date> date = ParseDate(typed);
      if (!date) return std::nullopt;
      return DateLiteral(*date, jet);
    }
    case SearchType::kText:
      break;
  }
  return SqlQuoted(typed);
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
