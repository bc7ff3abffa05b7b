// The frame of the document sheets: one record at a time of a table, moved through with
// IHostBillData.Navigate over the sheet's selection, found and filtered by declared fields,
// shown with its position ("记录：n/total"), edited in place and saved in one bracket.
//
// The frame holds what every document sheet keeps in the same way: the host objects, the
// function key and the document ID the sheet may be fixed on, the selection text, the current
// and previous IDs, the editing and dirty flags, the find and filter texts, the last error and
// the print file. It serves the record commands (LoadData with a direction), Find, FindNext,
// Filter and FindData, and guards a save against another clerk's save of the same record in
// between (RecordChanged). A sheet states its design (tag, key, statement, table) and writes
// its own procedures in their order: ClearForm, UpdateForm, FileNew, FileSave, ...
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/bill_data.h"
#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/form_tools.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/record_guard.h"

namespace mrvk {

// The title of the application's own boxes and messages.
inline constexpr const char* kApplicationTitle = "房屋租赁管理";

struct DocumentDesign {
  std::string tag;         // the sheet's failure tag: "FY_MX" + "-->LoadData::" + ...
  std::string table;       // the record's table ("fwfy")
  std::string key_column;  // its key ("房源ID"), also an output column of select_sql
  std::string select_sql;  // the load statement; selection and find texts name its columns
  // The record table alone ("select * from FwFy"), when each row of select_sql is one row of
  // it: the position is counted over it while no filter is in force.
  std::string count_sql = {};
};

class DocumentSheet : public ModuleObject, public IFormUI, public IDesignUI {
 public:
  explicit DocumentSheet(DocumentDesign design) : design_(std::move(design)) {}

  kvhost::ControlList& Controls() override { return controls_; }
  void SetParameters(std::shared_ptr<IParameters>) override {}

  // Keeps the context, the function key and the document ID, makes the host objects, then
  // the sheet's own InitForm. Loads no record.
  bool Init(IHostContext& context, int32_t progID, int32_t record_id) override;
  // Drops the host objects.
  bool Clear() override;

  // LoadData in the direction; Refresh loads the last record.
  bool RecordTop() override { return LoadData(navigate::kFirst); }
  bool RecordPrevious() override { return LoadData(navigate::kPrevious); }
  bool RecordNext() override { return LoadData(navigate::kNext); }
  bool RecordBottom() override { return LoadData(navigate::kLast); }
  bool Refresh() override { return LoadData(navigate::kLast); }

  // The condition array (declared SearchFields only; see ConditionText) replaces the find
  // text, then FindData(find text, keepOnMiss false). An Empty or Null array does nothing; a
  // refused one is said in a box and changes nothing.
  bool Find(const Variant& conditions) override;
  // The next record after the current one that the find text selects; a miss keeps the
  // record shown. Nothing without a find text.
  bool FindNext() override;
  // The condition array replaces the filter text, then the last record under it is loaded.
  bool Filter(const Variant& conditions) override;

  bool IsDirty() override { return dirty_; }
  int32_t GetID() override { return current_id_; }
  std::string ReturnPrintName() override { return print_file_; }
  bool FileNewNext() override { return false; }
  bool Check() override { return false; }
  bool UnCheck() override { return false; }
  bool Help() override { return false; }
  bool CheckStatus(const std::string&) override { return false; }
  std::string Attributes(int32_t) override { return ""; }

 protected:
  // The sheet's part of Init, after the frame's.
  virtual void InitForm() = 0;
  // Empties the form for no record (current ID 0; the previous ID stays).
  virtual void ClearForm() = 0;
  // Shows the record rs holds; position is "n/total" ("" when unknown).
  virtual void UpdateForm(Recordset& rs, const std::string& position) = 0;
  // The filter text came into force or went (the sheet shows it, e.g. LabFilter).
  virtual void FilterShown(bool in_force) { (void)in_force; }
  // The start of the selection text before the fixed document and the filter: "1=1" by
  // default; a sheet that walks over part of its table only says which part.
  virtual std::string BaseSelection() { return "1=1"; }
  // The statements whose rows make up the record as the sheet shows and saves it, for the
  // record's ID: by default its table's row. A sheet with detail rows adds theirs.
  virtual std::vector<std::string> RecordStatements(int32_t id) const;

  // Rebuilds the selection text: BaseSelection(), " and <key>=<document ID>" when the sheet is
  // fixed on a document, " AND <filter text>" while a filter is in force.
  void BuildSelection();
  // Navigate in the direction from the current ID: a miss (Null) clears the form, a failure
  // is reported with the tag + "-->LoadData::"; otherwise the form shows the record. Then the
  // dirty flag is cleared and FormRefreshed raised.
  bool LoadData(int direction);
  // Locate with the selection and the condition: a miss clears the form unless keep_on_miss,
  // a failure is reported with the tag + "-->FindData::"; otherwise the form shows the record.
  bool FindData(const std::string& condition, bool keep_on_miss);

  // Inside the save's bracket, before its first write: true when the shown record was changed
  // or deleted by another save since it was shown (kChangedByOthers is then said, and the
  // caller rolls back and stops) or when the check itself failed (its error said with the
  // tag). It first takes the record's row lock, so that a second save of the same record
  // waits for this one and then sees what it wrote. A new record (ID below 1) never changed.
  bool RecordChanged();

  DocumentDesign design_;
  kvhost::ControlList controls_;
  IHostContext* context_ = nullptr;
  std::unique_ptr<kvhost::BillData> bill_;
  std::unique_ptr<kvhost::FormTools> tools_;
  std::unique_ptr<kvhost::Convert> convert_;
  int32_t prog_id_ = 0;
  int32_t document_id_ = 0;  // above 0: the sheet is fixed on that one record
  std::string selection_ = "1=1";
  int32_t current_id_ = 0;
  int32_t previous_id_ = 0;
  bool editing_ = false;
  bool dirty_ = false;
  std::string find_text_;
  std::string filter_text_;
  std::string last_error_;
  std::string print_file_;

 private:
  // Shows what Navigate or Locate gave (Null: miss, "": a record, else a failure).
  void ShowResult(const Variant& result, std::unique_ptr<Recordset>& rs,
                  const std::string& position, const std::string& procedure, bool keep_on_miss);
  // Tells the host's bill data what the position counts (design_.count_sql without a filter).
  void CountPosition();
  // Reads the condition array of Find or Filter (plane 1 or 0) into text; false when there is
  // nothing to do (Empty, Null, or refused: then the refusal was said).
  bool ReadConditions(const Variant& conditions, int plane, std::string& text);

  RecordGuard guard_;  // the record as it was shown
};

}  // namespace mrvk
