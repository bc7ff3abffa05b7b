#include "mrvk/master/tree_master_sheet.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/grid_layout.h"
#include "mrvk/frame/transaction.h"
#include "mrvk/frame/vb.h"
#include "mrvk/master/master_procedures.h"

namespace mrvk {
namespace {

constexpr const char* kRootKey = "ROOT";

}  // namespace

TreeMasterSheet::TreeMasterSheet(TreeSheetDesign design) : design_(std::move(design)) {
  controls_.Add(TV);
  for (const MasterField& f : design_.fields) {
    kvhost::KvTxt& field = kvTxt.Add(controls_, f.index);
    field.Caption = f.caption;
    if (f.kind == MasterFieldKind::Number) field.Kind = kvhost::FieldKind::Number;
    // A change of a field, or a picker's result, makes the sheet dirty.
    field.Change = [this] { dirty_ = true; };
    field.ShowPicker = [this, &field](std::string& text, Variant& value) {
      context_->ShowPicker(field, text, value);
      dirty_ = true;
    };
    field.CheckPicker = [this, &field](const std::string& typed, Variant& value,
                                       std::string& text) {
      context_->CheckPicker(field, typed, value, text);
      dirty_ = true;
    };
  }
  tree_.Selected = [this](kvhost::TreeNode* node) { TreeSelected(node); };
  tree_.HookCtrl(TV, {}, &controls_);
  // The screen starts in viewing.
  SetEditable(false);
}

TreeMasterSheet::~TreeMasterSheet() { tree_.UnHookCtrl(); }

bool TreeMasterSheet::Init(IHostContext& context, int32_t progID, int32_t) {
  context_ = &context;
  prog_id_ = progID;
  tools_ = std::make_unique<kvhost::FormTools>(controls_);
  convert_ = std::make_unique<kvhost::Convert>();
  bill_ = std::make_unique<kvhost::BillData>();
  bill_->Database(&context.Database());
  InitBaseValue();
  return true;
}

void TreeMasterSheet::InitBaseValue() {
  for (const MasterBinding& b : design_.bindings) {
    kvhost::KvTxt& field = kvTxt[b.index];
    field.Config.ShowButton = true;
    field.Config.CheckInput = true;
    field.Config.ValueColumn = b.value_column;
    field.Config.DisplayColumn = b.display_column;
    field.Config.PickerKey = b.picker_key;
    field.Config.ValidateSql = b.validate_sql;
    field.Config.ErrorMessage = Trim(field.Caption) + "输入有误，请重新输入！";
  }
}

bool TreeMasterSheet::Refresh() {
  IHostDatabase& db = context_->Database();
  tree_.ClearTreeView();
  kvhost::TreeNode* root =
      tree_.NodeAdd(nullptr, kvhost::TreeRelationship::Last, kRootKey, design_.root_text);
  {
    auto rs =
        db.CreateCommand("select * from " + design_.table + " order by " + design_.code_column, 1)
            ->OpenRecordset();
    const std::string error = db.Error().Description();
    if (!error.empty()) {
      ErrMessage("刷新数据时出错：" + error, err_level::kDatabase, design_.title);
    } else {
      for (; !rs->Eof(); rs->MoveNext()) {
        const std::string code = convert_->ToText(rs->Fields(design_.code_column).Value);
        const std::string name = Trim(convert_->ToText(rs->Fields(design_.name_column).Value));
        TreeNodeAdd node;
        node.tag = convert_->ToNumber(rs->Fields(design_.key_column).Value);
        tree_.NodeAdd(kRootKey, kvhost::TreeRelationship::Child, "K" + code, code + " " + name,
                      node);
      }
      tree_.CollapseAll();
      root->Expanded = true;
      tree_.ReSelectItem(root);
    }
  }
  db.Release();
  dirty_ = false;
  return true;
}

void TreeMasterSheet::TreeSelected(kvhost::TreeNode* node) {
  if (!node) {
    ClearFields();
    return;
  }
  current_id_ = convert_->ToLong(convert_->ToNumber(node->Tag));
  UpdateForm();
}

void TreeMasterSheet::UpdateForm() {
  if (current_id_ <= 0) {
    ClearFields();
    return;
  }
  IHostDatabase& db = context_->Database();
  {
    auto rs = db.CreateCommand(design_.load_sql + std::to_string(current_id_), 1)->OpenRecordset();
    const std::string error = db.Error().Description();
    if (!error.empty()) ErrMessage(error, err_level::kDatabase, design_.title);
    if (!(rs->Eof() && rs->Bof())) {
      for (const MasterField& f : design_.fields) {
        kvhost::KvTxt& field = kvTxt[f.index];
        const Variant& v = rs->Fields(f.column).Value;
        switch (f.kind) {
          case MasterFieldKind::Text:
            field.Text = convert_->ToText(v);
            break;
          case MasterFieldKind::Value:
            field.Value = convert_->ToNumber(v);
            field.Text = convert_->ToText(rs->Fields(f.display_column).Value);
            break;
          case MasterFieldKind::Number:
            field.Text = NumberText(convert_->ToNumber(v).ToDouble());
            break;
        }
      }
    }
  }
  guard_.Take(db, {RowSql(current_id_)});
  db.Release();
}

bool TreeMasterSheet::FileNew() {
  SetEditable(true);
  ClearFields();
  dirty_ = false;
  tools_->SetFocus(kvTxt[0]);
  return true;
}

bool TreeMasterSheet::FileEdit() {
  if (!tree_.IsSelected()) {
    MsgBox("无选择项目,不能进行编辑", msgbox::kInformation, "提示：");
    return false;
  }
  SetEditable(true);
  dirty_ = false;
  // The code of a saved row is not changed through this command.
  kvTxt[0].Enabled = false;
  tools_->SetFocus(kvTxt[1]);
  return true;
}

void TreeMasterSheet::SetEditable(bool flag) { mrvk::SetEditable(controls_, flag); }

void TreeMasterSheet::ClearFields() {
  for (auto& [index, field] : kvTxt) {
    field->Text = "";
    field->Value = Variant(0);
  }
  current_id_ = 0;
}

std::string TreeMasterSheet::RowSql(int32_t id) const {
  return "select * from " + design_.table + " where " + design_.key_column + "=" +
         std::to_string(id);
}

std::string TreeMasterSheet::ScalarText(const std::string& sql) {
  return mrvk::ScalarText(context_->Database(), sql);
}

bool TreeMasterSheet::IsCanSave() {
  for (int i : {0, 1}) {
    if (Trim(kvTxt[i].Text).empty()) {
      ErrMessage("没有具体的" + Trim(kvTxt[i].Caption) + ",请录入!", err_level::kValidation,
                 design_.title);
      tools_->SetFocus(kvTxt[i]);
      return false;
    }
  }
  const std::string id = std::to_string(current_id_);
  const std::string columns[] = {design_.code_column, design_.name_column};
  for (int i : {0, 1}) {
    const std::string& column = columns[i];
    if (!ScalarText(" Select " + column + " From " + design_.table + " Where " + column + "=" +
                    SqlQuoted(Trim(kvTxt[i].Text)) + " And " + design_.key_column + "<>" + id)
             .empty()) {
      ErrMessage(Trim(kvTxt[i].Caption) + "重复,请检查!", err_level::kValidation, design_.title);
      tools_->SetFocus(kvTxt[i]);
      return false;
    }
  }
  return true;
}

std::string TreeMasterSheet::SqlValue(const MasterField& f) {
  const kvhost::KvTxt& field = kvTxt[f.index];
  switch (f.kind) {
    case MasterFieldKind::Text:
      return SqlQuoted(Trim(field.Text));
    case MasterFieldKind::Value:
      return NumberText(field.Value.IsNumeric() ? field.Value.ToDouble()
                                                : Val(field.Value.ToString()));
    case MasterFieldKind::Number:
      break;
  }
  return NumberText(Val(field.Text));
}

bool TreeMasterSheet::FileSave() {
  if (!IsCanSave()) return false;
  IHostDatabase& db = context_->Database();
  bool saved = false;
  // Every failure report comes after the rollback: the bracket is undone (explicitly, or by
  // leaving the try block) before the report is raised.
  try {
    Transaction tx(db);
    if (!tx.Open()) {
      ErrMessage("保存数据时出错：" + db.Error().Description(), err_level::kDatabase,
                 design_.title);
      db.Release();
      return false;
    }
    if (current_id_ > 0) {
      std::string error;
      const auto outcome = guard_.Check(db, design_.table, design_.key_column, current_id_,
                                        {RowSql(current_id_)}, error);
      if (outcome != RecordGuard::Outcome::kUnchanged) {
        tx.Rollback();
        db.Release();
        if (outcome == RecordGuard::Outcome::kChanged)
          MsgBox(kChangedByOthers, msgbox::kExclamation, "提示：");
        else
          ErrMessage("保存数据时出错：" + error, err_level::kDatabase, design_.title);
        return false;
      }
    }
    std::string sql;
    int32_t id = current_id_;
    if (current_id_ > 0) {
      sql = "UpDate " + design_.table + " set ";
      for (size_t i = 0; i < design_.fields.size(); ++i)
        sql += (i ? "," : "") + design_.fields[i].column + "=" + SqlValue(design_.fields[i]);
      sql += " Where " + design_.key_column + "=" + std::to_string(current_id_);
    } else {
      const std::string why = bill_->NewID(design_.table, design_.key_column, id);
      if (!why.empty()) {
        tx.Rollback();
        ErrMessage(why, err_level::kDatabase, design_.title);
        db.Release();
        return false;
      }
      std::string columns = design_.key_column;
      std::string values = std::to_string(id);
      for (const MasterField& f : design_.fields) {
        columns += "," + f.column;
        values += "," + SqlValue(f);
      }
      sql = "InSert Into " + design_.table + "(" + columns + ") Values (" + values + ")";
    }
    db.CreateCommand(sql, 1)->Execute();
    const std::string error = db.Error().Description();
    if (error.empty()) {
      const std::string code = Trim(kvTxt[0].Text);
      const std::string text = code + " " + Trim(kvTxt[1].Text);
      if (current_id_ > 0) {
        if (kvhost::TreeNode* node = TV.SelectedItem()) {
          node->Text = text;
          TV.EnsureVisible(*node);
        }
      } else {
        TreeNodeAdd node;
        node.tag = Variant(id);
        tree_.NodeAdd(kRootKey, kvhost::TreeRelationship::Child, "K" + code, text, node);
      }
      if (tx.Commit()) {
        SetEditable(false);
        dirty_ = false;
        if (current_id_ < 1) current_id_ = id;
        guard_.Take(db, {RowSql(current_id_)});
        saved = true;
      } else {
        // The engine refused the commit (an I/O failure) and undid the bracket; the node
        // stays until the next refresh, the sheet stays in edit mode with what was typed.
        ErrMessage("保存数据时出错：" + db.Error().Description(), err_level::kDatabase,
                   design_.title);
      }
    } else {
      tx.Rollback();
      ErrMessage("保存数据时出错：" + error, err_level::kDatabase, design_.title);
    }
  } catch (const VbError& e) {
    ErrMessage("保存数据时出错：" + e.Description(), err_level::kDatabase, design_.title);
  }
  db.Release();
  return saved;
}

bool TreeMasterSheet::FileDelete() {
  try {
    if (!tree_.IsSelected()) {
      MsgBox("无选择项目,不能进行编辑", msgbox::kInformation, "提示：");
      return false;
    }
    kvhost::TreeNode* node = TV.SelectedItem();
    if (MsgBox("是否删除当前记录:" + node->Text, msgbox::kYesNoWarning, "提示:") != msgbox::kYes)
      return false;
    const int32_t id = convert_->ToLong(convert_->ToNumber(node->Tag));
    const std::string code = node->Text.substr(0, node->Text.find(' '));
    if (!IsCanDelete(id, code)) return false;
    const std::string error =
        DeleteRow(context_->Database(), design_.table, design_.key_column, id);
    if (!error.empty()) {
      ErrMessage("删除数据时出错：" + error, err_level::kDatabase, design_.title);
      return false;
    }
    tree_.NodeDelete(node, /*ask=*/false);
    TreeSelected(TV.SelectedItem());
    return true;
  } catch (const VbError& e) {
    ErrMessage("FileDelete::" + e.Description(), err_level::kValidation, design_.title);
    return false;
  }
}

bool TreeMasterSheet::IsCanDelete(int32_t id, const std::string&) {
  try {
    bool used = false;
    if (!IsCulterUse(id, used)) return false;
    if (used) {
      ErrMessage(design_.in_use_message, err_level::kValidation, design_.title);
      return false;
    }
    return true;
  } catch (const VbError& e) {
    ErrMessage("IsCanDelete::" + e.Description(), err_level::kValidation, design_.title);
    return false;
  }
}

bool TreeMasterSheet::IsCulterUse(int32_t id, bool& used) {
  try {
    used = Val(ScalarText(" Select Top 1 " + design_.key_column + " From " + design_.use_table +
                          " Where " + design_.key_column + "=" + std::to_string(id))) > 0;
    context_->Database().Release();
    return true;
  } catch (const VbError& e) {
    ErrMessage("IsCulterUse::" + e.Description(), err_level::kValidation, design_.title);
    return false;
  }
}

bool TreeMasterSheet::FileCancel() {
  tree_.ReSelectItem();
  SetEditable(false);
  dirty_ = false;
  return true;
}

bool TreeMasterSheet::Find(const Variant&) {
  find_text_.clear();
  kvhost::TreeNode* node = nullptr;
  return tree_.NodeFind(node, find_text_, "", /*select=*/true);
}

bool TreeMasterSheet::FindNext() {
  kvhost::TreeNode* node = nullptr;
  kvhost::TreeNode* selected = TV.SelectedItem();
  return tree_.NodeFindNext(node, find_text_, selected ? selected->Index() : 0, /*select=*/true);
}

bool TreeMasterSheet::RecordTop() {
  tree_.ScrollView(scroll_view::kFirstNode);
  return true;
}

bool TreeMasterSheet::RecordBottom() {
  tree_.ScrollView(scroll_view::kLastNode);
  return true;
}

bool TreeMasterSheet::RecordPrevious() {
  tree_.MoveNodePrevious();
  return true;
}

bool TreeMasterSheet::RecordNext() {
  tree_.MoveNodeNext();
  return true;
}

void TreeMasterSheet::DoGetFormStatus() {
  sbGetFormStatus(LayoutPath(design_.class_name, *context_), /*pbOnlyColWidth=*/true, controls_,
                  *context_);
  if (kvhost::TreeNode* node = TV.SelectedItem()) TreeSelected(node);
}

void TreeMasterSheet::DoSaveFormStatus() {
  sbSaveFormStatus(LayoutPath(design_.class_name, *context_), /*pbOnlyColWidth=*/true, controls_);
}

bool TreeMasterSheet::Clear() {
  tree_.ClearTreeView();
  context_ = nullptr;
  tools_.reset();
  convert_.reset();
  bill_.reset();
  return true;
}

}  // namespace mrvk
