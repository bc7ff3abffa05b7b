#include "mrvk/master/entry_dialog.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/transaction.h"
#include "mrvk/frame/vb.h"
#include "mrvk/master/master_procedures.h"

namespace mrvk {

EntryDialog::EntryDialog(std::string name, EntryTable table)
    : kvhost::Dialog(std::move(name)), table_(std::move(table)) {}

kvhost::KvTxt& EntryDialog::AddField(int index, const std::string& caption) {
  kvhost::KvTxt& field = kvTxt.Add(Controls(), index);
  field.Caption = caption;
  return field;
}

void EntryDialog::AddButtons() {
  Cmd.Add(Controls(), 0).Caption = "保存(&S)";
  Cmd.Add(Controls(), 1).Caption = "关闭(&X)";
  Cmd[0].Click = [this] { DoSave(); };
  Cmd[1].Click = [this] { Hide(); };
}

void EntryDialog::Run(IHostContext& context, int32_t id, bool view_only,
                      const std::string& caption) {
  context_ = &context;
  bill_ = std::make_unique<kvhost::BillData>();
  bill_->Database(&context.Database());
  tools_ = std::make_unique<kvhost::FormTools>(Controls());
  convert_ = std::make_unique<kvhost::Convert>();
  id_ = id;
  Caption = caption;
  // Each run starts from empty fields, as a freshly loaded form does.
  ClearFields();
  if (id_ > 0) {
    IHostDatabase& db = context.Database();
    {
      const std::string show_sql =
          table_.show_sql.empty() ? RowSql() : table_.show_sql + std::to_string(id_);
      auto rs = db.CreateCommand(show_sql, 1)->OpenRecordset();
      if (!(rs->Eof() && rs->Bof())) UpdateForm(*rs);
    }
    guard_.Take(db, {RowSql()});
    db.Release();
  }
  SetEditable(!view_only);
  Show();
  context_ = nullptr;
  bill_.reset();
  tools_.reset();
  convert_.reset();
}

std::string EntryDialog::ColumnText(Recordset& rs, const std::string& column) {
  return convert_->ToText(rs.Fields(column).Value);
}

std::string EntryDialog::RowSql() const {
  return "select * from " + table_.table + " where " + table_.key_column + "=" +
         std::to_string(id_);
}

void EntryDialog::SetEditable(bool flag) {
  mrvk::SetEditable(Controls(), flag);
  Cmd[0].Enabled = flag;
}

void EntryDialog::ClearFields() {
  for (auto& [index, field] : kvTxt) {
    field->Text = "";
    field->Value = Variant(0);
  }
}

void EntryDialog::ReportError(const std::string& text, int level, const std::string& title) const {
  if (OnErrMessage) OnErrMessage(text, level, title);
}

bool EntryDialog::IsTaken(const std::string& column, const std::string& text) {
  const std::string found =
      ScalarText(context_->Database(), "select " + table_.key_column + " from " + table_.table +
                                           " where " + column + "=" + SqlQuoted(text) + " and " +
                                           table_.key_column + "<>" + std::to_string(id_));
  context_->Database().Release();
  return !found.empty();
}

bool EntryDialog::IsCanSave() {
  try {
    for (int i : {0, 1}) {
      if (FieldText(i).empty()) {
        ReportError("没有具体的" + Trim(kvTxt[i].Caption) + ",请录入!", err_level::kValidation,
                    "提示：");
        tools_->SetFocus(kvTxt[i]);
        return false;
      }
    }
    if (IsTaken(table_.code_column, FieldText(0))) {
      ReportError(Trim(kvTxt[0].Caption) + "重复,请检查!", err_level::kValidation, "提示：");
      tools_->SetFocus(kvTxt[0]);
      return false;
    }
    // This title has no colon.
    if (IsTaken(table_.name_column, FieldText(1))) {
      ReportError(Trim(kvTxt[1].Caption) + "重复,请检查!", err_level::kValidation, "提示");
      tools_->SetFocus(kvTxt[1]);
      return false;
    }
    return true;
  } catch (const VbError& e) {
    ReportError("IsCanSave:" + e.Description(), err_level::kValidation, Caption);
    return false;
  }
}

void EntryDialog::DoSave() {
  try {
    if (!IsCanSave()) return;
    IHostDatabase& db = context_->Database();
    int32_t id = id_;
    std::string sql;
    if (id_ > 0) {
      sql = UpdateSql(id_);
    } else {
      const std::string why = bill_->NewID(table_.table, table_.key_column, id);
      if (!why.empty()) {
        ReportError(why, err_level::kDatabase, "提示：");
        return;
      }
      sql = InsertSql(id);
    }
    // The row is written in a bracket that first checks it is still the row shown.
    Transaction tx(db);
    std::string error = db.Error().Description();
    if (tx.Open() && id_ > 0) {
      switch (guard_.Check(db, table_.table, table_.key_column, id_, {RowSql()}, error)) {
        case RecordGuard::Outcome::kUnchanged:
          break;
        case RecordGuard::Outcome::kChanged:
          tx.Rollback();
          db.Release();
          MsgBox(kChangedByOthers, msgbox::kExclamation, "提示:");
          return;
        case RecordGuard::Outcome::kFailed:
          tx.Rollback();
          break;
      }
    }
    if (tx.Open()) {
      db.CreateCommand(sql, 1)->Execute();
      error = db.Error().Description();
      if (error.empty() && !tx.Commit()) error = db.Error().Description();
      tx.Rollback();
    }
    db.Release();
    if (!error.empty()) {
      MsgBox(error, msgbox::kCritical, "提示:");
      return;
    }
    const bool is_new = id_ <= 0;
    id_ = id;
    if (OnReturnData) OnReturnData(id, is_new);
    Hide();
  } catch (const VbError& e) {
    ReportError("DoSave:" + e.Description(), err_level::kValidation, Caption);
  }
}

}  // namespace mrvk
