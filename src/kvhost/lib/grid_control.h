// The cells, rows and columns both grid controls share, the list grid ("VsFlexGrid") and the
// editable detail grid ("kvGrid"): a Rows x Cols matrix of texts with fixed rows at the top
// and fixed columns at the left; per column a width, hidden flag, alignment, data type,
// display format and merge flag; per row a height; colours, alignment and bold per cell; the
// current cell (Row, Col) and the first data row in view (TopRow).
//
// Members use the names the logic uses. Indexed members without side effects give a
// reference, so the logic writes them as it reads them: `grid.TextMatrix(0, c) = "编号"`,
// `grid.ColWidth(3) = 0`. Members with side effects have a setter: SetRows, SetCols, ...
// An index out of range is the control's run-time failure: it throws mrvk::VbError, which the
// logic's handlers catch (layout procedures skip the statement).
//
// Sizes are in grid units, twips-like: a header caption gives its column 100 per character
// and 200 per wide character (docs/decisions.md).
//
// The state for front ends (WriteState), beside the members every control writes:
//   "rows", "cols", "fixed_rows", "fixed_cols", "frozen_cols": the sizes; "rows" counts all
//       rows, fixed and subtotal rows included, so a front end sizes its scroll bar by it;
//   "row", "col": the current cell; "top_row": the first data row in view;
//   "window": {"first": top_row, "count": n}: the data rows the state carries (at most
//       kStateWindowRows, rows filtered out skipped); a front end pages with the gesture
//       scroll (row = new TopRow). With rows filtered out it adds "shown" (the data rows
//       that show), "above" (those above the window) and "previous" (the row where the
//       window before this one starts, when there is one);
//   "merge_cells", "word_wrap", "grid_color" (0x00BBGGRR), "redraw": when false the logic is
//       still filling the grid and a front end keeps what it shows;
//   "columns": per column {"width" (0: not shown), "hidden", "alignment" (grid_align),
//       "data_type", "format", "merge"}; the detail grid adds its descriptor;
//   "cells": the fixed rows, then the window, each {"row", "text": [displayed text per
//       column, formats applied], optional "height" (when not the default),
//       "merge" (the row merges equal neighbours: a merged header), "subtotal" (the group
//       column of a subtotal row, -1 for the grand total), "styles": [{"col", "back", "fore",
//       "alignment", "bold"}] for cells with a style of their own}.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kvhost/lib/control.h"
#include "mrvk/frame/host_contract.h"

namespace kvhost {

// "No colour": a cell shows the grid's own colour.
inline constexpr int32_t kNoColor = -1;

// ColAlignment and the cell alignment, as FlexGrid-type controls number them.
namespace grid_align {
inline constexpr int kLeftTop = 0;
inline constexpr int kLeftCenter = 1;
inline constexpr int kLeftBottom = 2;
inline constexpr int kCenterTop = 3;
inline constexpr int kCenterCenter = 4;
inline constexpr int kCenterBottom = 5;
inline constexpr int kRightTop = 6;
inline constexpr int kRightCenter = 7;
inline constexpr int kRightBottom = 8;
inline constexpr int kGeneral = 9;  // texts left, numbers right
}  // namespace grid_align

// ColDataType: VB's variable types.
namespace grid_type {
inline constexpr int kEmpty = 0;
inline constexpr int kInteger = 2;
inline constexpr int kLong = 3;
inline constexpr int kSingle = 4;
inline constexpr int kDouble = 5;
inline constexpr int kCurrency = 6;
inline constexpr int kDate = 7;
inline constexpr int kString = 8;
inline constexpr int kBoolean = 11;
}  // namespace grid_type

// The properties Cell reads and writes.
namespace cell_property {
inline constexpr int kText = 0;
inline constexpr int kAlignment = 2;
inline constexpr int kBackColor = 6;
inline constexpr int kForeColor = 7;
inline constexpr int kFontBold = 13;
}  // namespace cell_property

class GridControl : public Control {
 public:
  static constexpr int kDefaultColWidth = 1000;
  static constexpr int kDefaultRowHeight = 300;
  // The data rows the state for front ends carries at most, from TopRow on.
  static constexpr int kStateWindowRows = 200;
  // The `subtotal` of a row that is not a subtotal row.
  static constexpr int kDataRow = -2;

  int Rows() const { return static_cast<int>(rows_.size()); }
  // New rows are empty; rows beyond the new count are dropped.
  void SetRows(int rows);
  // Removes data row `row`; the rows below move up, Row stays on a row that is there.
  void RemoveItem(int row);
  int Cols() const { return static_cast<int>(columns_.size()); }
  // New columns are empty with the default width; columns beyond the new count are dropped.
  void SetCols(int cols);
  int FixedRows() const { return fixed_rows_; }
  // Rows grow to hold the fixed rows.
  void SetFixedRows(int fixed_rows);
  int FixedCols() const { return fixed_cols_; }
  void SetFixedCols(int fixed_cols);
  int Row() const { return row_; }
  void SetRow(int row);
  int Col() const { return col_; }
  void SetCol(int col);
  // The first data row in view: between FixedRows and the last row.
  int TopRow() const;
  void SetTopRow(int row);

  std::string& TextMatrix(int row, int col);
  const std::string& TextMatrix(int row, int col) const;
  int& ColWidth(int col) { return ColumnAt(col).width; }
  int ColWidth(int col) const { return ColumnAt(col).width; }
  bool& ColHidden(int col) { return ColumnAt(col).hidden; }
  bool ColHidden(int col) const { return ColumnAt(col).hidden; }
  int& ColAlignment(int col) { return ColumnAt(col).alignment; }
  int ColAlignment(int col) const { return ColumnAt(col).alignment; }
  int& ColDataType(int col) { return ColumnAt(col).data_type; }
  int ColDataType(int col) const { return ColumnAt(col).data_type; }
  // The type of the data a column holds: its ColDataType when one is set, else what the last
  // LoadArray put into it: kDouble when every value was a number, kDate when every value was
  // a date or a text "yyyy-mm-dd" of a real date (the form in which both engines give dates),
  // kString for any other mix; kEmpty when nothing tells (no value loaded).
  virtual int ColValueType(int col) const;
  std::string& ColFormat(int col) { return ColumnAt(col).format; }
  const std::string& ColFormat(int col) const { return ColumnAt(col).format; }
  bool& MergeCol(int col) { return ColumnAt(col).merge; }
  bool MergeCol(int col) const { return ColumnAt(col).merge; }
  bool& MergeRow(int row) { return GridRowAt(row).merge; }
  bool MergeRow(int row) const { return GridRowAt(row).merge; }
  int& RowHeight(int row) { return GridRowAt(row).height; }
  int RowHeight(int row) const { return GridRowAt(row).height; }
  // Whether the column shows at all: not hidden and wider than 0.
  bool IsColumnShown(int col) const { return !ColHidden(col) && ColWidth(col) > 0; }

  // Which cells merge with equal neighbours (0: never; the front end merges the rows and
  // columns flagged by MergeRow and MergeCol otherwise).
  int MergeCells = 0;
  int RowHeightMin = 0;
  int FrozenCols = 0;
  int32_t GridColor = 0xC0C0C0;
  bool WordWrap = false;
  // Off while the logic fills the grid; front ends draw when it is on again.
  bool Redraw = true;

  // The header string: captions separated by "|". Setting it sets Cols, writes the captions
  // into row 0 (trailing blanks dropped) and sizes each column by its caption with its
  // blanks (CaptionWidth). Reading gives the captions of row 0 joined by "|".
  std::string FormatString() const;
  void SetFormatString(const std::string& format);

  // The property of cell (row, col) (cell_property::...): the text as a string, the colours
  // (kNoColor for none) and alignment (-1: the column's) as numbers, bold as a boolean.
  mrvk::Variant Cell(int property, int row, int col) const;
  // Sets the property on every cell of the range r1..r2, c1..c2 (in either order).
  void SetCell(int property, int r1, int c1, int r2, int c2, const mrvk::Variant& value);

  // Fills the grid from the rows of a recordset in one go: Rows becomes FixedRows plus the
  // number of rows, and field f of each row goes to column FixedCols + f, as text (numbers by
  // the number-to-text rule, dates "yyyy-mm-dd", Null ""). Fields beyond Cols are dropped.
  // Earlier data rows, subtotal rows and cell colours go.
  void LoadArray(const mrvk::RowsArray& data);

  // The text of a cell as it shows: the column's format applied to a number.
  std::string DisplayText(int row, int col) const;
  // The text a person is shown for the cell on screen, in print and in an export: the
  // displayed text, or "***" in a column the person may not read (detail grid).
  std::string ShownText(int row, int col) const { return StateText(row, col); }
  // True for a row that Subtotal made.
  bool IsSubtotal(int row) const { return GridRowAt(row).subtotal != kDataRow; }
  // The group column of a subtotal row, -1 for a grand total, kDataRow for a data row.
  int SubtotalGroup(int row) const { return GridRowAt(row).subtotal; }

 protected:
  // A new grid has 2 rows and 2 columns, one of each fixed.
  GridControl(std::string type_name, std::string name, int index);

  struct CellStyle {
    int32_t back = kNoColor;
    int32_t fore = kNoColor;
    int alignment = -1;
    bool bold = false;
  };
  struct GridColumn {
    int width = kDefaultColWidth;
    bool hidden = false;
    int alignment = grid_align::kGeneral;
    int data_type = grid_type::kEmpty;
    int loaded_type = grid_type::kEmpty;  // the type of the values LoadArray put in
    std::string format;
    bool merge = false;
  };
  struct GridRow {
    std::vector<std::string> text;
    std::vector<CellStyle> style;  // empty until a cell of the row is styled
    int height = kDefaultRowHeight;
    bool merge = false;
    int subtotal = kDataRow;  // the group column of a subtotal row, -1 for the grand total
    bool locked = false;      // the detail grid's row that takes no edit
  };

  GridColumn& ColumnAt(int col);
  const GridColumn& ColumnAt(int col) const;
  GridRow& GridRowAt(int row);
  const GridRow& GridRowAt(int row) const;
  GridRow NewRow() const;
  // The text a front end is given for a cell; the detail grid hides masked columns.
  virtual std::string StateText(int row, int col) const { return DisplayText(row, col); }
  // Called after the number of columns changed.
  virtual void ColsChanged() {}
  // The grid's state: sizes, columns, and the fixed rows plus a window of data rows from
  // TopRow, with the displayed texts.
  void WriteOwnState(nlohmann::json& out) const override;
  // Checks a gesture's cell; "" when it exists.
  std::string CheckGestureCell(const Gesture& gesture) const;
  // The gesture col_width (col, text = the new width in grid units, 0 hides the column): a
  // person sizing a column, which the layout file keeps. Refused for a hidden or disabled
  // grid, a column that is not there or a width that is no whole number from 0 to 32767.
  std::string ApplyColWidth(const Gesture& gesture);
  // Puts rows in place of the grid's rows (Row stays within them).
  void ReplaceRows(std::vector<GridRow> rows);

  std::vector<GridRow> rows_;

 private:
  std::vector<GridColumn> columns_;
  int fixed_rows_ = 1;
  int fixed_cols_ = 1;
  int row_ = 1;
  int col_ = 1;
  int top_row_ = 1;
};

}  // namespace kvhost
