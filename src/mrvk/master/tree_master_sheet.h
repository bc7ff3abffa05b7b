// The tree master sheet: a tree of all rows of one table on the left, the fields of the
// selected row on the right, and the host's toolbar driving new, edit, save, delete, cancel,
// find and navigation. Buildings (PDMLy) and estates (PDMWy) are this sheet with their own
// table, fields and statements (TreeSheetDesign).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/bill_data.h"
#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/form_tools.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/tree_view_control.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/record_guard.h"
#include "mrvk/frame/tree_view.h"

namespace mrvk {

// How a field is written and shown.
enum class MasterFieldKind {
  Text,    // Text, trimmed, between quotes; shown as ToText of the column
  Value,   // Value as a number; shown as Value = ToNumber(column), Text = ToText(display)
  Number,  // the number the Text holds; shown as the text of ToNumber(column)
};

struct MasterField {
  int index;
  std::string caption;
  std::string column;
  MasterFieldKind kind = MasterFieldKind::Text;
  std::string display_column = {};  // Value fields: the load statement's column of the Text
};

// A field bound to a lookup: the picker button shows and typed text is checked.
struct MasterBinding {
  int index;
  std::string value_column;
  std::string display_column;
  std::string picker_key;
  std::string validate_sql;
};

struct TreeSheetDesign {
  std::string class_name;  // also the layout name
  std::string title;       // the title of failure reports
  std::string caption;     // the design caption
  std::string root_text;   // the text of the root node
  std::string table;
  std::string key_column;   // 楼宇ID
  std::string code_column;  // 楼宇编号, the field 0
  std::string name_column;  // 楼宇名称, the field 1
  std::vector<MasterField> fields;
  std::vector<MasterBinding> bindings;
  std::string load_sql;        // the load statement up to the ID
  std::string use_table;       // the table asked whether it refers to a row
  std::string in_use_message;  // the refusal of a delete of a row in use
};

class TreeMasterSheet : public ModuleObject, public IFormUI, public IDesignUI {
 public:
  explicit TreeMasterSheet(TreeSheetDesign design);
  ~TreeMasterSheet() override;

  std::string ClassName() const override { return design_.class_name; }
  kvhost::ControlList& Controls() override { return controls_; }
  void SetParameters(std::shared_ptr<IParameters>) override {}

  bool Init(IHostContext& context, int32_t progID, int32_t record_id) override;
  bool Clear() override;
  bool Refresh() override;
  bool FileNew() override;
  bool FileEdit() override;
  bool FileSave() override;
  bool FileDelete() override;
  bool FileCancel() override;
  bool Find(const Variant& conditions) override;
  bool FindNext() override;
  bool RecordTop() override;
  bool RecordPrevious() override;
  bool RecordNext() override;
  bool RecordBottom() override;
  bool IsDirty() override { return dirty_; }
  void DoGetFormStatus() override;
  void DoSaveFormStatus() override;
  // No body on this sheet: false, 0 or empty.
  bool FileNewNext() override { return false; }
  bool Filter(const Variant&) override { return false; }
  bool Check() override { return false; }
  bool UnCheck() override { return false; }
  bool PrintPreview() override { return false; }
  bool DoPrint() override { return false; }
  bool PrintSetup() override { return false; }
  bool Help() override { return false; }
  bool DoSetStatus(const std::string&, bool) override { return false; }
  int32_t GetID() override { return 0; }
  bool CheckStatus(const std::string&) override { return false; }
  std::string ReturnPrintName() override { return ""; }
  std::string Attributes(int32_t) override { return ""; }
  // A tree of records: no page to print and no list grid to export.
  std::vector<std::string> ServedCommands() override {
    return {"FileNew",        "FileEdit",   "FileDelete",   "FileSave", "FileCancel", "RecordTop",
            "RecordPrevious", "RecordNext", "RecordBottom", "Find",     "Filter",     "Refresh"};
  }

  // The screen.
  kvhost::TreeView TV{"TV"};
  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};

 private:
  void InitBaseValue();
  void UpdateForm();
  bool IsCanSave();
  bool IsCanDelete(int32_t id, const std::string& code);
  bool IsCulterUse(int32_t id, bool& used);
  void SetEditable(bool flag);
  void ClearFields();
  // The tree's Selected event, also run by the sheet itself.
  void TreeSelected(kvhost::TreeNode* node);
  // The field's text as it goes into a statement: quoted text or a number.
  std::string SqlValue(const MasterField& field);
  // The row of the table with the ID: what the guard against lost updates compares.
  std::string RowSql(int32_t id) const;
  // Runs a statement for one value; its text ("" for no row or Null).
  std::string ScalarText(const std::string& sql);

  TreeSheetDesign design_;
  kvhost::ControlList controls_;
  cTreeView tree_;
  IHostContext* context_ = nullptr;
  std::unique_ptr<kvhost::BillData> bill_;
  std::unique_ptr<kvhost::FormTools> tools_;
  std::unique_ptr<kvhost::Convert> convert_;
  int32_t prog_id_ = 0;
  int32_t current_id_ = 0;
  std::string find_text_;
  bool dirty_ = false;
  RecordGuard guard_;  // the row as it was shown
};

}  // namespace mrvk
