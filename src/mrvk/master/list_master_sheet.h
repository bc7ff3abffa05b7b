// The list master sheet: every row of one table in a read-only grid, and a modal entry dialog
// for a new row and for editing one, which checks and saves on its own. Delete asks, checks
// that no other table uses the row, and takes the row out of the grid. Parties (PDMYz), fee
// categories (PDMFykm) and the quick housing register (PDMFy) are this sheet with their table,
// grid and dialog.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/grid_tool.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/list_grid.h"
#include "mrvk/master/entry_dialog.h"

namespace mrvk {

struct ListSheetDesign {
  std::string class_name;  // PDMYz; the layout name starts with it
  std::string format;      // the grid's header string; its last column holds the ID
  std::string table;       // fwyz
  std::string key_column;  // 业主ID
  // The columns of a row written into grid columns 1, 2, ... when the dialog saved it; the
  // last is the key.
  std::vector<std::string> row_columns;
  std::string use_table;  // the table asked whether it refers to a row (fwfy)
  // The statement that reads a saved row for the grid, up to the ID; empty for
  // "select * from <table> where <key>=".
  std::string row_sql = {};
  // The use check up to the ID; empty for " select top 1 <key> from <use_table> where <key>=".
  // It gives the key of a row that uses the ID, so a number above 0 means used.
  std::string use_sql = {};
  // The tags of the handlers of last resort of FileDelete and of the use check; the use
  // check without a tag of its own reports through FileDelete's.
  std::string delete_tag = "FileDelete:";
  std::string use_tag = {};
};

class ListMasterSheet : public ModuleObject, public IFormUI, public IDesignUI {
 public:
  explicit ListMasterSheet(ListSheetDesign design);
  ~ListMasterSheet() override = default;

  std::string ClassName() const override { return design_.class_name; }
  kvhost::ControlList& Controls() override { return controls_; }
  void SetParameters(std::shared_ptr<IParameters>) override {}

  bool Init(IHostContext& context, int32_t progID, int32_t record_id) override;
  bool Clear() override;
  bool Refresh() override;
  bool FileNew() override;
  bool FileEdit() override;
  bool FileDelete() override;
  bool Find(const Variant& conditions) override;
  bool FindNext() override;
  bool Filter(const Variant& conditions) override;
  void DoGetFormStatus() override;
  void DoSaveFormStatus() override;
  // The dialog saves; the sheet has no edit state.
  bool FileSave() override { return false; }
  bool FileCancel() override { return false; }
  bool IsDirty() override { return false; }
  int32_t GetID() override { return 0; }
  // Navigation does nothing on a list sheet.
  bool RecordTop() override { return false; }
  bool RecordPrevious() override { return false; }
  bool RecordNext() override { return false; }
  bool RecordBottom() override { return false; }
  bool FileNewNext() override { return false; }
  bool Check() override { return false; }
  bool UnCheck() override { return false; }
  bool PrintPreview() override { return false; }
  bool DoPrint() override { return false; }
  bool PrintSetup() override { return false; }
  bool Help() override { return false; }
  bool DoSetStatus(const std::string&, bool) override { return false; }
  bool CheckStatus(const std::string&) override { return false; }
  std::string ReturnPrintName() override { return ""; }
  std::string Attributes(int32_t) override { return ""; }
  // The list is the screen: no record navigation; the host prints and exports its grid.
  std::vector<std::string> ServedCommands() override {
    return {"FileNew", "FileEdit", "FileDelete", "FileSave",     "FileCancel", "Find",
            "Filter",  "Refresh",  "DoPrint",    "PrintPreview", "Export"};
  }

  // The wheel turned to step n: the grid scrolls there.
  void mcMouseEvent_Wheel(int step);

  // The screen.
  kvhost::VsFlexGrid Vs{"Vs"};

 protected:
  // The word of the rows: the title of failure reports and the name in the refusal of a
  // delete ("业主", "费用科目").
  virtual std::string Word() const = 0;
  // Settles what the sheet shows by its function key (owners or clients).
  virtual void TakeProgID(int32_t) {}
  virtual std::string LoadSql() const = 0;
  virtual std::string LayoutName() const = 0;
  // Shows the entry dialog for the row with this ID (0 for a new row).
  virtual void ShowEntry(int32_t id) = 0;
  // Makes the sheet answer the dialog's events (moForm_...).
  void HearDialog(EntryDialog& form);
  // The dialog's events, passed on to the host or taken into the grid.
  void moForm_Message(const std::string& text) { Message(text); }
  void moForm_ErrMessage(const std::string& text, int level, const std::string& title) {
    ErrMessage(text, level, title);
  }
  void moForm_ReturnData(int32_t id, bool is_new);

  IHostContext* context_ = nullptr;

 private:
  // The ID in the key column of the current row; 0 when the current row is no data row.
  int32_t CurrentID();
  bool IsCanDelete(int32_t id);

  ListSheetDesign design_;
  kvhost::ControlList controls_;
  std::unique_ptr<kvhost::GridTool> grid_tool_;
  std::unique_ptr<kvhost::Convert> convert_;
  std::unique_ptr<WheelHook> wheel_;
  bool refreshing_ = false;
  int find_row_ = 0;
  int find_col_ = 0;
};

}  // namespace mrvk
