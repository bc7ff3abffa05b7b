// The modal entry dialog of a list sheet (parties, fee categories): the fields of one row,
// a save button that checks, saves at once and closes, and a close button. The sheet shows it
// for a new row (ID 0) or a saved one, and hears of a good save by ReturnData.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kvhost/lib/bill_data.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/dialog.h"
#include "kvhost/lib/form_tools.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/record_guard.h"

namespace mrvk {

// The table a dialog saves to and the two columns that must be filled and unique.
struct EntryTable {
  std::string table;        // fwyz
  std::string key_column;   // 业主ID
  std::string code_column;  // 业主编号, the field kvTxt(0)
  std::string name_column;  // 业主名称, the field kvTxt(1)
  // The statement whose row UpdateForm shows, up to the ID; empty for the table's own row
  // ("select * from <table> where <key>="). A dialog that shows names of other tables joins
  // them here.
  std::string show_sql = {};
};

class EntryDialog : public kvhost::Dialog {
 public:
  ~EntryDialog() override = default;

  // The dialog's events, answered by the sheet: a status text, a failure report, and a good
  // save of the row with this ID (is_new for an insert).
  std::function<void(const std::string& text)> OnMessage;
  std::function<void(const std::string& text, int level, const std::string& title)> OnErrMessage;
  std::function<void(int32_t id, bool is_new)> OnReturnData;

  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
  kvhost::ControlArray<kvhost::CommandButton> Cmd{"Cmd"};

 protected:
  EntryDialog(std::string name, EntryTable table);

  // Adds the field kvTxt(index) with its caption.
  kvhost::KvTxt& AddField(int index, const std::string& caption);
  // Adds the buttons "保存(&S)" and "关闭(&X)"; they come last on the dialog.
  void AddButtons();

  // The common course of py_Init: keeps the context and the ID, makes the helpers, takes the
  // caption, shows the row (UpdateForm) for an ID above 0, SetEditable(!view_only), and
  // shows the dialog modally. Returns when the dialog is closed; the context and helpers are
  // dropped then.
  void Run(IHostContext& context, int32_t id, bool view_only, const std::string& caption);

  // Fills the fields from the shown row (EntryTable::show_sql + ID).
  virtual void UpdateForm(Recordset& rs) = 0;
  // The statements of a save: the update of the shown row, the insert of a new row with id.
  virtual std::string UpdateSql(int32_t id) = 0;
  virtual std::string InsertSql(int32_t id) = 0;

  // The text of a field as it is saved: trimmed.
  std::string FieldText(int index) { return Trim(kvTxt[index].Text); }
  // A column of the row as it is shown: its text, "" for Null.
  std::string ColumnText(Recordset& rs, const std::string& column);

  IHostContext* context_ = nullptr;
  std::unique_ptr<kvhost::Convert> convert_;

 private:
  // The row of the table: "select * from <table> where <key>=<ID>"; the guard against lost
  // updates compares it.
  std::string RowSql() const;
  bool IsCanSave();
  void DoSave();
  void SetEditable(bool flag);
  void ClearFields();
  void ReportError(const std::string& text, int level, const std::string& title) const;
  // True when another row of the table holds this text in the column.
  bool IsTaken(const std::string& column, const std::string& text);

  EntryTable table_;
  std::unique_ptr<kvhost::BillData> bill_;
  std::unique_ptr<kvhost::FormTools> tools_;
  int32_t id_ = 0;
  RecordGuard guard_;  // the row as the dialog showed it
};

}  // namespace mrvk
