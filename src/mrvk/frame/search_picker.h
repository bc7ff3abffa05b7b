// The pickers with a search box (the housing picker Sel_FY, the contract picker Sel_HT): a
// list narrowed by estate, layout and a state field, searched through SearchBox1, which
// either moves to the first hit or (chkFilter) hides the rows without one; a row chosen by
// the confirm button, a double click or Enter; a typed number checked by the beginning of
// two columns. A picker states only what it lists (SearchPickerShape); the screen, its
// handlers and its layout file (AppPath/selfbb/<class name>.txt) are the same for both.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/form_tools.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/search_box.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/picker_contract.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

// What a picker with a search box lists and how: its statement in parts, the grid and the
// state field. Column 0 of the statement is the key (Value), column 1 the number (Text).
struct SearchPickerShape {
  const char* state_caption;  // kvTxt(2)
  const char* state_list;     // its drop-down list
  const char* format;         // the grid's header
  int frozen_cols;
  bool key_hidden;            // column 0 hidden (and then not searched unless the layout says so)
  const char* select;         // the statement up to its filters, ending in a where clause
  const char* state_of;       // the filter of kvTxt(2): this + the quoted text
  const char* with_new;       // the filter instead of kvTxt(2) when New = 1
  const char* order;          // the list's order
  const char* prefix_first;   // Validate: the two columns a typed number begins
  const char* prefix_second;  //   ("like" the first, "Like" the second)
  const char* key_field;      // Validate reads these two of its first row
  const char* number_field;
};

class SearchPicker : public ModuleObject, public IPickerUI, public IDesignUI, public IPickerList {
 public:
  explicit SearchPicker(const SearchPickerShape& shape);

  // IDesignUI: the screen's own controls; written parameters are not read.
  kvhost::ControlList& Controls() override { return controls_; }
  void SetParameters(std::shared_ptr<IParameters>) override {}

  // IPickerUI
  bool Init(IHostContext& context, int32_t progID, const std::string& name) override;
  // Writes the search settings, then lets go of everything.
  bool Clear() override;
  bool Refresh() override;
  bool GetIsDirty() override { return false; }
  void SetIsDirty(bool) override {}
  // The search settings, in the layout file of the class's name (AppPath/selfbb/<name>.txt),
  // section "Search": "Field" + i whether SearchBox1 searches column i, "Filter" whether
  // chkFilter is ticked.
  void DoGetFormStatus() override;
  void DoSaveFormStatus() override;
  std::string Attributes(const std::string&) override { return ""; }
  std::shared_ptr<IHostPickerParameters> GetPickerParameters() override { return parameters_; }
  void SetPickerParameters(std::shared_ptr<IHostPickerParameters> parameters) override;
  Variant GetValue() override { return value_; }
  void SetValue(const Variant& value) override { value_ = value; }
  std::string GetText() override { return text_; }
  // Keeps the text, puts it into SearchBox1 and searches for it.
  void SetText(const std::string& text) override;
  IPickerObject* Objects() override { return nullptr; }
  // The first row, within the filters, whose two prefix columns begin with the typed text.
  bool Validate(const std::string& key, const std::string& value_column,
                const std::string& text_column, const std::string& input, Variant& value,
                std::string& text) override;

  // IPickerList: a front end's answer with row indexes.
  kvhost::VsFlexGrid& ListGrid() override { return Vs; }
  const kvhost::Control* FindBox() const override { return &SearchBox1; }
  bool MultipleRows() const override { return false; }
  void ChooseRows(const std::vector<int>& rows) override;
  void CancelChoice() override { Cmd_Click(kCancel); }

  // The screen.
  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
  kvhost::VsFlexGrid Vs{"Vs"};
  kvhost::SearchBox SearchBox1{"SearchBox1"};
  kvhost::CheckBox chkFilter{"chkFilter"};
  kvhost::ControlArray<kvhost::CommandButton> Cmd{"Cmd"};

  // The filter fields.
  static constexpr int kEstate = 0;
  static constexpr int kLayout = 1;
  static constexpr int kState = 2;
  // The buttons.
  static constexpr int kSelect = 0;
  static constexpr int kCancel = 1;
  static constexpr int kRefresh = 2;
  // The grid's columns.
  static constexpr int kColID = 0;
  static constexpr int kColNumber = 1;

 private:
  // The list: the statement with the filters, GetRows into the grid.
  void LoadData();
  // The statement of the list and of Validate up to its order: the filters of the three
  // fields, or with New = 1 the shape's own filter instead of the state field.
  std::string FilteredStatement();
  // The numeric value of the parameter New; 0 when it is not there.
  int NewMode() const;
  // The current row gives Value and Text (a row above the data rows, or none, gives "0"
  // and ""), then DoSelect.
  void Select();
  // Searches the rows for SearchBox1's text: see the definition.
  void Search();
  // Shows every row again.
  void ShowAllRows();
  // A typed estate or layout looked up by the field's statement; see the definition.
  void CheckTyped(kvhost::KvTxt& field, const std::string& typed, Variant& value,
                  std::string& text);
  void Cmd_Click(int index);
  void Vs_KeyDown(int key_code, int shift);

  // The handler of last resort: a run-time failure in fn is shown with the title "错误：".
  template <typename Fn>
  bool Guarded(Fn&& fn);

  const SearchPickerShape shape_;
  kvhost::ControlList controls_;
  IHostContext* context_ = nullptr;
  int32_t prog_id_ = 0;
  std::shared_ptr<IHostPickerParameters> parameters_;
  std::unique_ptr<kvhost::FormTools> tools_;
  std::unique_ptr<kvhost::Convert> convert_;
  Variant value_;
  std::string text_;
};

template <typename Fn>
bool SearchPicker::Guarded(Fn&& fn) {
  try {
    fn();
    return true;
  } catch (const VbError& e) {
    MsgBox(e.Description(), msgbox::kCritical, "错误：");
    return false;
  }
}

}  // namespace mrvk
