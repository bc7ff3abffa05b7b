// The modal window of a picker: the controls of its list, shown through the session's UI port
// like any dialog. Front ends see it as a form of kind "picker" whose state carries the rows
// it offers; it is worked on by gestures, or answered with the indexes of the chosen rows
// (null cancels). A picker class without a list of its own (no IPickerList) is a form of kind
// "picker" without rows, and any answer closes it as a cancel.
#pragma once

#include <string>

#include "kvhost/lib/dialog.h"
#include "mrvk/frame/picker_contract.h"

namespace kvhost {

class PickerForm : public Dialog {
 public:
  // The rows a front end is given at most, from the grid's top row on.
  static constexpr int kStateRows = 200;

  PickerForm(std::string name, mrvk::IPickerList* list) : Dialog(std::move(name)), list_(list) {}

  std::string Kind() const override { return "picker"; }
  // The dialog's state, and: "columns" (the captions of the shown columns), "rows" (up to
  // kStateRows visible data rows from the top row, each {"index", "cells"}), "count" (the
  // visible data rows), "current" (the current row's index, -1 for none), "multiple", and
  // "find_box" ({"name", "index"}: the list's find field) when the list has one.
  void WriteState(nlohmann::json& out) const override;
  // null cancels; an array of row indexes chooses them (exactly one unless the list takes
  // several). Anything else, or an index that is no data row of the list, is refused.
  std::string Answer(const mrvk::Variant& value) override;

 private:
  mrvk::IPickerList* list_;
};

}  // namespace kvhost
