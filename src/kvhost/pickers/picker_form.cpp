#include "kvhost/pickers/picker_form.h"

#include <nlohmann/json.hpp>

#include "kvhost/lib/control.h"
#include "kvhost/lib/vs_flex_grid.h"

namespace kvhost {

void PickerForm::WriteState(nlohmann::json& out) const {
  Dialog::WriteState(out);
  if (!list_) return;
  const VsFlexGrid& grid = list_->ListGrid();
  std::vector<int> shown_cols;
  nlohmann::json columns = nlohmann::json::array();
  for (int c = 0; c < grid.Cols(); ++c) {
    if (!grid.IsColumnShown(c)) continue;
    shown_cols.push_back(c);
    columns.push_back(grid.FixedRows() > 0 ? grid.TextMatrix(0, c) : std::string());
  }
  const int fixed = grid.FixedRows();
  const int top = grid.TopRow();
  nlohmann::json rows = nlohmann::json::array();
  int count = 0;
  for (int r = fixed; r < grid.Rows(); ++r) {
    if (grid.RowHeight(r) == 0 || grid.IsSubtotal(r)) continue;
    ++count;
    if (r < top || static_cast<int>(rows.size()) >= kStateRows) continue;
    nlohmann::json cells = nlohmann::json::array();
    for (int c : shown_cols) cells.push_back(grid.DisplayText(r, c));
    rows.push_back({{"index", r - fixed}, {"cells", std::move(cells)}});
  }
  out["columns"] = std::move(columns);
  out["rows"] = std::move(rows);
  out["count"] = count;
  out["current"] = grid.Row() >= fixed && grid.Row() < grid.Rows() ? grid.Row() - fixed : -1;
  out["multiple"] = list_->MultipleRows();
  if (const Control* box = list_->FindBox()) {
    out["find_box"] = {{"name", box->Name()}};
    if (box->Index() >= 0) out["find_box"]["index"] = box->Index();
  }
}

std::string PickerForm::Answer(const mrvk::Variant& value) {
  if (!list_) return Dialog::Answer(value);
  if (value.IsNull() || value.IsEmpty()) {
    list_->CancelChoice();
    if (IsShown()) Hide();
    return "";
  }
  if (!value.IsArray() || value.AsArray().Dimensions() != 1)
    return "a picker is answered by an array of row indexes, or null to cancel";
  const mrvk::VariantArray& a = value.AsArray();
  const VsFlexGrid& grid = list_->ListGrid();
  const int data_rows = grid.Rows() - grid.FixedRows();
  std::vector<int> rows;
  for (int i = 0; i <= a.UBound(1); ++i) {
    const mrvk::Variant& v = a.at({i});
    if (!v.IsNumeric() || v.ToDouble() != static_cast<double>(v.ToLong()))
      return "a row index is a whole number";
    const int row = v.ToLong();
    if (row < 0 || row >= data_rows || grid.IsSubtotal(grid.FixedRows() + row))
      return "the list has no row " + std::to_string(row);
    rows.push_back(row);
  }
  if (!list_->MultipleRows() && rows.size() != 1) return "this picker takes exactly one row";
  list_->ChooseRows(rows);
  return "";
}

}  // namespace kvhost
