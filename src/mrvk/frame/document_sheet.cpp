#include "mrvk/frame/document_sheet.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

bool DocumentSheet::Init(IHostContext& context, int32_t progID, int32_t record_id) {
  context_ = &context;
  prog_id_ = progID;
  document_id_ = record_id;
  bill_ = std::make_unique<kvhost::BillData>();
  bill_->Database(&context.Database());
  tools_ = std::make_unique<kvhost::FormTools>(controls_);
  convert_ = std::make_unique<kvhost::Convert>();
  BuildSelection();
  InitForm();
  return true;
}

bool DocumentSheet::Clear() {
  bill_.reset();
  tools_.reset();
  convert_.reset();
  return true;
}

void DocumentSheet::BuildSelection() {
  selection_ = BaseSelection();
  if (document_id_ > 0)
    selection_ += " and " + design_.key_column + "=" + std::to_string(document_id_);
  if (!filter_text_.empty()) selection_ += " AND " + filter_text_;
  FilterShown(!filter_text_.empty());
}

bool DocumentSheet::LoadData(int direction) {
  BuildSelection();
  CountPosition();
  std::string position;
  std::unique_ptr<Recordset> rs;
  const Variant result = bill_->Navigate(position, rs, design_.select_sql, selection_, direction,
                                         current_id_, design_.key_column, 0);
  ShowResult(result, rs, position, "-->LoadData::", /*keep_on_miss=*/false);
  dirty_ = false;
  RaiseEvent("FormRefreshed", event_id::kFormRefreshed);
  return true;
}

bool DocumentSheet::FindData(const std::string& condition, bool keep_on_miss) {
  CountPosition();
  std::string position;
  std::unique_ptr<Recordset> rs;
  const Variant result =
      bill_->Locate(position, rs, design_.select_sql, selection_, condition, design_.key_column);
  ShowResult(result, rs, position, "-->FindData::", keep_on_miss);
  return true;
}

void DocumentSheet::CountPosition() {
  // A filter may name a column of a joined table: then the load statement is counted.
  bill_->CountFrom(filter_text_.empty() ? design_.count_sql : std::string());
}

void DocumentSheet::ShowResult(const Variant& result, std::unique_ptr<Recordset>& rs,
                               const std::string& position, const std::string& procedure,
                               bool keep_on_miss) {
  IHostDatabase& db = context_->Database();
  if (result.IsNull()) {
    if (!keep_on_miss) ClearForm();
  } else if (const std::string error = result.ToString(); !error.empty()) {
    last_error_ = error;
    ErrMessage(design_.tag + procedure + error, err_level::kDatabase, kApplicationTitle);
  } else {
    ClearForm();
    if (rs && !rs->Eof()) {
      UpdateForm(*rs, position);
      guard_.Take(db, RecordStatements(current_id_));
    }
  }
  db.Release();
}

bool DocumentSheet::ReadConditions(const Variant& conditions, int plane, std::string& text) {
  std::string refusal;
  const auto read =
      ConditionText(conditions, plane, IsJet(context_->Database()), SearchFields(), refusal);
  if (!read) {
    if (!refusal.empty()) MsgBox(refusal, msgbox::kExclamation, kApplicationTitle);
    return false;
  }
  text = *read;
  return true;
}

bool DocumentSheet::Find(const Variant& conditions) {
  if (!ReadConditions(conditions, /*plane=*/1, find_text_)) return false;
  return FindData(find_text_, /*keep_on_miss=*/false);
}

bool DocumentSheet::FindNext() {
  if (find_text_.empty()) return false;
  return FindData(find_text_ + " AND " + design_.key_column + " > " + std::to_string(current_id_),
                  /*keep_on_miss=*/true);
}

bool DocumentSheet::Filter(const Variant& conditions) {
  if (!ReadConditions(conditions, /*plane=*/0, filter_text_)) return false;
  return LoadData(navigate::kLast);
}

std::vector<std::string> DocumentSheet::RecordStatements(int32_t id) const {
  return {"select * from " + design_.table + " where " + design_.key_column + "=" +
          std::to_string(id)};
}

bool DocumentSheet::RecordChanged() {
  if (current_id_ < 1) return false;
  std::string error;
  switch (guard_.Check(context_->Database(), design_.table, design_.key_column, current_id_,
                       RecordStatements(current_id_), error)) {
    case RecordGuard::Outcome::kUnchanged:
      return false;
    case RecordGuard::Outcome::kChanged:
      MsgBox(kChangedByOthers, msgbox::kExclamation, kApplicationTitle);
      return true;
    case RecordGuard::Outcome::kFailed:
      break;
  }
  last_error_ = error;
  ErrMessage(design_.tag + "-->FileSave::" + error, err_level::kDatabase, kApplicationTitle);
  return true;
}

}  // namespace mrvk
