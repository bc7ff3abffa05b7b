// selPdm: the generic code picker over any table with the columns 电话, 地址, 联系人, 备注
// (clients, owners), in one-row or several-rows mode, with a find box; clsPdm carries the
// chosen row back. The host hands it out under the key "selpdm".
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/form_tools.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/picker_contract.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

// One chosen code.
class clsPdm : public ModuleObject, public IPickerObject {
 public:
  std::string ClassName() const override { return "clsPdm"; }
  Variant Item(const std::string& name) const override;
  Variant ChosenValue() const override { return Variant(lID); }
  std::string ChosenText() const override { return s名称; }

  int32_t lID = 0;
  std::string s编号;
  std::string s名称;
};

class selPdm : public ModuleObject, public IPickerUI, public IDesignUI, public IPickerList {
 public:
  selPdm();

  std::string ClassName() const override { return "selPdm"; }
  // The name given to Init (the class name before).
  std::string Name() const { return name_.empty() ? ClassName() : name_; }

  // IDesignUI: the screen's own controls; written parameters are not read.
  kvhost::ControlList& Controls() override { return controls_; }
  void SetParameters(std::shared_ptr<IParameters>) override {}

  // IPickerUI
  bool Init(IHostContext& context, int32_t progID, const std::string& name) override;
  bool Clear() override;
  bool Refresh() override;
  bool GetIsDirty() override { return dirty_; }
  void SetIsDirty(bool dirty) override { dirty_ = dirty; }
  void DoGetFormStatus() override {}
  void DoSaveFormStatus() override {}
  std::string Attributes(const std::string&) override { return ""; }
  std::shared_ptr<IHostPickerParameters> GetPickerParameters() override { return parameters_; }
  void SetPickerParameters(std::shared_ptr<IHostPickerParameters> parameters) override;
  Variant GetValue() override { return value_; }
  void SetValue(const Variant& value) override { value_ = value; }
  std::string GetText() override { return text_; }
  void SetText(const std::string& text) override { text_ = text; }
  IPickerObject* Objects() override { return pdm_.get(); }
  // The code or name typed, looked up in the table: see the definition.
  bool Validate(const std::string& key, const std::string& value_column,
                const std::string& text_column, const std::string& input, Variant& value,
                std::string& text) override;

  // IPickerList: a front end's answer with row indexes.
  kvhost::VsFlexGrid& ListGrid() override { return Vs; }
  const kvhost::Control* FindBox() const override { return &Txt[0]; }
  bool MultipleRows() const override { return !single_; }
  void ChooseRows(const std::vector<int>& rows) override;
  void CancelChoice() override { Cmd_Click(kCancel); }

  // Keys of the screen: Enter in the grid or the find box confirms, Ctrl+B moves the focus to
  // the find box, Ctrl+Shift+E asks for the columns to search.
  void Vs_KeyDown(int key_code, int shift);
  void Txt_KeyDown(int index, int key_code, int shift);

  // The find box's text as it stood at the last confirm.
  const std::string& LastFind() const { return find_text_; }
  // The grid columns the find box searches; empty for the grid's current column.
  const std::vector<int>& FindColumns() const { return find_columns_; }

  // The screen: the list, the find box Txt(0) with the columns it searches in Txt(1) and the
  // matching mode in Check, and the buttons.
  kvhost::VsFlexGrid Vs{"Vs"};
  kvhost::Label lblFind{"lblFind"};
  kvhost::ControlArray<kvhost::TextBox> Txt{"Txt"};
  kvhost::CheckBox Check{"Check"};
  kvhost::ControlArray<kvhost::CommandButton> Cmd{"Cmd"};

  // The buttons by index.
  static constexpr int kRefresh = 0;
  static constexpr int kConfirm = 1;
  static constexpr int kCancel = 2;
  static constexpr int kSelectAll = 3;
  static constexpr int kClearAll = 4;

 protected:
  // Lays out the grid and loads the rows.
  virtual void LoadData();
  // Reads the current row into the result and raises DoSelect.
  virtual void Confirm();
  // The handler of last resort: a run-time failure in fn is shown as "错误：" + its text.
  template <typename Fn>
  bool Guarded(Fn&& fn);
  // Reads a parameter as trimmed text.
  std::string Param(const std::string& name) const;
  // Searches the find columns for the find box's text (ChkFind).
  void ChkFind();
  // Asks for the find columns by an input box and parses them when they changed.
  void AskFindColumns();
  // The current row when it is a data row that shows; -1 otherwise.
  int CurrentDataRow() const;
  // Applies `single` (one row or several) to the grid and the buttons.
  virtual void ApplyMode();
  // Parses Txt(1) ("列1;列2;...列n": column numbers, or captions of the grid's header) into
  // the find columns.
  void ParseFindColumns();

  kvhost::ControlList controls_;
  IHostContext* context_ = nullptr;
  int32_t prog_id_ = 0;
  std::string name_;
  std::string layout_folder_;
  std::shared_ptr<IHostPickerParameters> parameters_;
  std::unique_ptr<kvhost::FormTools> tools_;
  std::unique_ptr<kvhost::Convert> convert_;
  std::unique_ptr<clsPdm> pdm_;
  std::vector<int> find_columns_;
  std::string parsed_columns_;  // the text of Txt(1) find_columns_ came from
  std::string find_text_;       // the find box's text at the last confirm
  bool single_ = false;
  bool dirty_ = false;
  Variant value_;
  std::string text_;

 private:
  void Cmd_Click(int index);
  void Vs_Click();
  void Check_Click();
};

template <typename Fn>
bool selPdm::Guarded(Fn&& fn) {
  try {
    fn();
    return true;
  } catch (const VbError& e) {
    MsgBox("错误：" + e.Description(), msgbox::kCritical, "");
    return false;
  }
}

std::unique_ptr<ModuleObject> NewSelPdm();
std::unique_ptr<ModuleObject> NewClsPdm();

}  // namespace mrvk
