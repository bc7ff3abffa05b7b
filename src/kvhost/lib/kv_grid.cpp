#include "kvhost/lib/kv_grid.h"

#include <nlohmann/json.hpp>

#include "kvhost/lib/display_format.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

KvGridColumn& KvGrid::Column(int col) {
  ColumnAt(col);
  return columns_[static_cast<size_t>(col)];
}

const KvGridColumn& KvGrid::Column(int col) const {
  ColumnAt(col);
  return columns_[static_cast<size_t>(col)];
}

int KvGrid::ColValueType(int col) const {
  if (ColDataType(col) == grid_type::kEmpty) {
    if (Column(col).Kind == GridColumnKind::Number) return grid_type::kDouble;
    if (Column(col).Kind == GridColumnKind::Date) return grid_type::kDate;
  }
  return GridControl::ColValueType(col);
}

void KvGrid::ResetColumn(int col) {
  Column(col) = KvGridColumn{};
  ColHidden(col) = false;
}

void KvGrid::MoveTo(int row, int col) {
  const int old_row = Row();
  const int old_col = Col();
  SetRow(row);
  SetCol(col);
  if ((old_row != row || old_col != col) && AfterRowColChange)
    AfterRowColChange(old_row, old_col, row, col);
}

std::string KvGrid::Apply(const Gesture& g) {
  if (g.kind == "cell_edit") return Edit(g);
  if (g.kind == "col_width") return ApplyColWidth(g);
  if (g.kind == "row_add") return AddRow();
  if (g.kind == "row_delete") return DeleteRow(g);
  if (g.kind != "cell_click" && g.kind != "cell_dblclick") return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
  if (std::string why = CheckGestureCell(g); !why.empty()) return why;
  MoveTo(g.row, g.col);
  if (g.kind == "cell_click" && CellClick) CellClick(g.row, g.col);
  if (g.kind == "cell_dblclick" && DblClick) DblClick(g.row, g.col);
  return "";
}

std::string KvGrid::Edit(const Gesture& g) {
  if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
  if (!Editable) return DisplayName() + " is not editable now";
  if (std::string why = CheckGestureCell(g); !why.empty()) return why;
  const std::string cell = "(" + std::to_string(g.row) + ", " + std::to_string(g.col) + ")";
  if (g.row < FixedRows()) return DisplayName() + " cell " + cell + " is a header cell";
  if (RowLocked(g.row)) return DisplayName() + " row " + std::to_string(g.row) + " is locked";
  const KvGridColumn& column = Column(g.col);
  if (column.ReadOnly) return DisplayName() + " column " + std::to_string(g.col) + " is read-only";
  std::string text = g.text;
  const std::string trimmed = mrvk::Trim(text);
  if (column.Kind == GridColumnKind::Number && !trimmed.empty()) {
    if (!IsPlainNumber(trimmed))
      return DisplayName() + " column " + std::to_string(g.col) + " takes a number, not \"" +
             g.text + "\"";
    text = trimmed;
  }
  if (column.Kind == GridColumnKind::Date && !trimmed.empty()) {
    const auto date = mrvk::ParseDate(trimmed);
    if (!date)
      return DisplayName() + " column " + std::to_string(g.col) + " takes a date, not \"" + g.text +
             "\"";
    text = date->ToText();
  }
  if (!column.List.empty() && !trimmed.empty()) {
    if (("|" + column.List + "|").find("|" + text + "|") == std::string::npos)
      return DisplayName() + " column " + std::to_string(g.col) + " takes an entry of its list";
  }
  MoveTo(g.row, g.col);
  bool cancel = false;
  if (BeforeEdit) BeforeEdit(g.row, g.col, text, cancel);
  if (cancel) return "";
  TextMatrix(g.row, g.col) = text;
  if (AfterEdit) AfterEdit(g.row, g.col);
  return "";
}

std::string KvGrid::AddRow() {
  if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
  if (!Editable || !AllowUserAdd) return DisplayName() + " takes no new row now";
  const int row = Rows();
  SetRows(row + 1);
  int col = FixedCols();
  while (col < Cols() - 1 && (Column(col).ReadOnly || ColHidden(col))) ++col;
  MoveTo(row, col);
  if (AfterRowAdd) AfterRowAdd(row);
  return "";
}

std::string KvGrid::DeleteRow(const Gesture& g) {
  if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
  if (!Editable || !AllowUserDelete) return DisplayName() + " deletes no row now";
  if (g.row < FixedRows() || g.row >= Rows())
    return DisplayName() + " has no data row " + std::to_string(g.row);
  MoveTo(g.row, Col());
  if (mrvk::MsgBox("是否删除当前行？", mrvk::msgbox::kYesNo + mrvk::msgbox::kQuestion, "提示") !=
      mrvk::msgbox::kYes)
    return "";
  bool cancel = false;
  if (BeforeDeleteRow) BeforeDeleteRow(g.row, cancel);
  if (cancel) return "";
  RemoveItem(g.row);
  if (AfterDeleteRow) AfterDeleteRow(g.row);
  return "";
}

std::string KvGrid::StateText(int row, int col) const {
  if (row >= FixedRows() && Column(col).Masked && !TextMatrix(row, col).empty()) return "***";
  return DisplayText(row, col);
}

void KvGrid::WriteOwnState(nlohmann::json& out) const {
  GridControl::WriteOwnState(out);
  out["editable"] = Editable;
  out["can_add"] = AllowUserAdd;
  out["can_delete"] = AllowUserDelete;
  nlohmann::json& columns = out["columns"];
  for (int c = 0; c < Cols(); ++c) {
    const KvGridColumn& d = Column(c);
    nlohmann::json& col = columns[static_cast<size_t>(c)];
    col["read_only"] = d.ReadOnly;
    col["kind"] = d.Kind == GridColumnKind::Number ? "number"
                  : d.Kind == GridColumnKind::Date ? "date"
                                                   : "text";
    if (d.BackColor != kNoColor) col["back"] = d.BackColor;
    if (d.ForeColor != kNoColor) col["fore"] = d.ForeColor;
    if (!d.PickerKey.empty()) col["picker"] = d.PickerKey;
    if (!d.List.empty()) col["list"] = d.List;
    if (d.Masked) col["masked"] = true;
  }
}

}  // namespace kvhost
