#include "kvhost/host_context.h"

#include <cstdio>

#include "kvhost/pickers/statement_picker.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

std::string Prefix(int32_t progID) {
  if (progID >= 870201 && progID <= 870299) return "HT";
  if (progID >= 870301 && progID <= 870399) return "SK";
  return "DJ";
}

std::string Period(mrvk::Date date) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "%04d%02d", date.year() % 10000, date.month());
  return buf;
}

std::string Param(db::Dialect d, int n) {
  return d == db::Dialect::Sqlite ? "?" : "$" + std::to_string(n);
}

}  // namespace

mrvk::IHostOption HostContext::GetOption(const mrvk::Variant& key) {
  auto it = options_.find(key.ToString());
  return {it == options_.end() ? std::string() : it->second};
}

mrvk::IHostOption HostContext::GetSystemOption(const mrvk::Variant& key) { return GetOption(key); }

std::string HostContext::FormatBillCode(int32_t progID, mrvk::Date date, int64_t seq) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%04lld", static_cast<long long>(seq));
  return Prefix(progID) + Period(date) + buf;
}

int64_t HostContext::LastIssued(int32_t progID, const std::string& period) {
  const db::Dialect d = db_.dialect();
  db::RewrittenSql q;
  q.sql =
      "SELECT lastno FROM xt_billcode WHERE progID=" + Param(d, 1) + " AND period=" + Param(d, 2);
  q.params = {{db::SqlParam::Kind::Integer, std::to_string(progID)},
              {db::SqlParam::Kind::Text, period}};
  db::ResultSet rs;
  Status s = db_.connection().Query(q, rs);
  if (!s.ok()) {
    last_error_ = s.message();
    return -1;
  }
  return rs.rows() ? static_cast<int64_t>(rs.values[0].ToDouble()) : 0;
}

// Preview shows the next number without taking it. Saving takes a number when the field
// still holds one of this function's and month's numbers (or nothing): the next free one is
// drawn atomically and replaces the field's text, so two clerks who previewed the same
// number each get their own. A number the clerk typed in another form is kept as typed.
bool HostContext::BillCode(int32_t progID, mrvk::Date date, std::string& code, bool preview) {
  const std::string period = Period(date);
  const int64_t last = LastIssued(progID, period);
  if (last < 0) return false;
  if (preview) {
    code = FormatBillCode(progID, date, last + 1);
    return true;
  }
  const std::string typed = mrvk::Trim(code);
  const std::string ours = Prefix(progID) + period;
  const bool drawn = typed.empty() ||
                     (typed.size() == ours.size() + 4 && typed.compare(0, ours.size(), ours) == 0 &&
                      typed.find_first_not_of("0123456789", ours.size()) == std::string::npos);
  if (!drawn) return true;
  const db::Dialect d = db_.dialect();
  const std::vector<db::SqlParam> key = {{db::SqlParam::Kind::Integer, std::to_string(progID)},
                                         {db::SqlParam::Kind::Text, period}};
  db::RewrittenSql ins;
  ins.sql = std::string(d == db::Dialect::Sqlite ? "INSERT OR IGNORE" : "INSERT") +
            " INTO xt_billcode (progID, period, lastno) VALUES (" + Param(d, 1) + "," +
            Param(d, 2) + ",0)" + (d == db::Dialect::Sqlite ? "" : " ON CONFLICT DO NOTHING");
  ins.params = key;
  db::RewrittenSql upd;
  upd.sql = "UPDATE xt_billcode SET lastno=lastno+1 WHERE progID=" + Param(d, 1) +
            " AND period=" + Param(d, 2) + " RETURNING lastno";
  upd.params = key;
  db::ResultSet rs;
  Status s = db_.connection().Execute(ins, nullptr);
  if (s.ok()) s = db_.connection().Query(upd, rs);
  if (!s.ok() || rs.rows() == 0) {
    last_error_ = s.ok() ? "no document number could be drawn" : s.message();
    return false;
  }
  code = FormatBillCode(progID, date, static_cast<int64_t>(rs.values[0].ToDouble()));
  return true;
}

// The last number drawn goes back to the counter, so the next document reuses it; any other
// number simply becomes unused.
bool HostContext::ReleaseBillCode(int32_t progID, mrvk::Date date, const std::string& code) {
  const std::string period = Period(date);
  const int64_t last = LastIssued(progID, period);
  if (last < 0) return false;
  if (last == 0 || mrvk::Trim(code) != FormatBillCode(progID, date, last)) return true;
  const db::Dialect d = db_.dialect();
  db::RewrittenSql upd;
  upd.sql = "UPDATE xt_billcode SET lastno=lastno-1 WHERE progID=" + Param(d, 1) +
            " AND period=" + Param(d, 2) + " AND lastno=" + Param(d, 3);
  upd.params = {{db::SqlParam::Kind::Integer, std::to_string(progID)},
                {db::SqlParam::Kind::Text, period},
                {db::SqlParam::Kind::Integer, std::to_string(last)}};
  Status s = db_.connection().Execute(upd, nullptr);
  if (!s.ok()) last_error_ = s.message();
  return s.ok();
}

}  // namespace kvhost

namespace kvhost {

void HostContext::ShowPicker(KvTxt& field, std::string& text, mrvk::Variant& value) {
  pickers_.ShowFieldPicker(field, text, value);
}

// The field's check statement with every @ standing for the typed text (quotes doubled). A
// field without a statement whose picker key names a service asks that service. Nothing
// found: the field's message (its caption and "输入有误，请重新输入！" when it has none),
// value 0, the text as typed.
void HostContext::CheckPicker(KvTxt& field, const std::string& typed, mrvk::Variant& value,
                              std::string& text) {
  const std::string message = field.Config.ErrorMessage.empty()
                                  ? mrvk::Trim(field.Caption) + "输入有误，请重新输入！"
                                  : field.Config.ErrorMessage;
  if (mrvk::Trim(field.Config.ValidateSql).empty()) {
    mrvk::IHostPicker* service = pickers_.Service(field.Config.PickerKey);
    if (!service || !service->Init(0)) {
      mrvk::MsgBox("没有可用的选择列表：" + field.Config.PickerKey, mrvk::msgbox::kInformation, "");
      return;
    }
    mrvk::Variant found_value;
    std::string found_text;
    if (service->Validate(field.Config.PickerKey, field.Config.ValueColumn,
                          field.Config.DisplayColumn, typed, found_value, found_text)) {
      value = found_value;
      text = found_text;
      return;
    }
    value = mrvk::Variant(int32_t{0});
    text = typed;
    mrvk::MsgBox(message, mrvk::msgbox::kExclamation, "");
    return;
  }
  std::string refusal;
  const std::optional<std::string> sql = SpliceTyped(field.Config.ValidateSql, typed, refusal);
  if (!sql) {
    mrvk::MsgBox(refusal, mrvk::msgbox::kCritical, "");
    return;
  }
  auto rs = db_.CreateCommand(*sql, 1)->OpenRecordset();
  const std::string error = db_.Error().Description();
  if (!error.empty()) {
    mrvk::MsgBox(error, mrvk::msgbox::kCritical, "");
    return;
  }
  if (rs->Eof() && rs->Bof()) {
    value = mrvk::Variant(int32_t{0});
    text = typed;
    mrvk::MsgBox(message, mrvk::msgbox::kExclamation, "");
    return;
  }
  value = rs->Fields(field.Config.ValueColumn).Value;
  const mrvk::Variant& shown = rs->Fields(field.Config.DisplayColumn).Value;
  text = shown.IsNull() || shown.IsEmpty() ? "" : shown.ToString();
}

}  // namespace kvhost
