// The host's own list window, behind the keys "sel_id_j", "sel_inner_j", "sel_pdmsjzd",
// "sel_pdmgy", "selpdmkjkm" and a field's "gy_" list: the rows of one statement in a grid, a
// find box that narrows them, and the buttons to confirm and to cancel.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "kvhost/pickers/picker_form.h"
#include "mrvk/frame/picker_contract.h"

namespace kvhost {

class HostList : public mrvk::IPickerList {
 public:
  HostList();

  // Lists the rows of `data` (columns named `names`, in that order): the columns in `shown`
  // show under their captions, the others are kept hidden in the grid. The first data row
  // becomes the current one; the find box is emptied.
  void Load(const std::string& caption, const std::vector<std::string>& names,
            const std::vector<std::pair<int, std::string>>& shown, mrvk::RowsArray data);
  // Shows the window modally until the person confirms a row or cancels. The chosen row's
  // index, or nullopt for a cancel.
  std::optional<int> Show();

  // The value of column `name` (found without regard to case) in data row `row`; Empty when
  // there is no such column.
  mrvk::Variant Value(int row, const std::string& name) const;
  int RowCount() const { return static_cast<int>(data_.rows); }

  // IPickerList
  VsFlexGrid& ListGrid() override { return Vs; }
  const Control* FindBox() const override { return &txtFind; }
  bool MultipleRows() const override { return false; }
  void ChooseRows(const std::vector<int>& rows) override;
  void CancelChoice() override;

  VsFlexGrid Vs{"Vs"};
  Label lblFind{"lblFind"};
  TextBox txtFind{"txtFind"};
  ControlArray<CommandButton> Cmd{"Cmd"};

 private:
  // Keeps the rows that hold the find text in a shown column (ASCII letters without regard to
  // case) and hides the others; the first row kept becomes the current and top row.
  void FindChanged();
  // Confirms the current row when it is a shown data row.
  void Confirm();

  PickerForm form_;
  std::vector<std::string> names_;
  mrvk::RowsArray data_;
  std::optional<int> chosen_;
};

}  // namespace kvhost
