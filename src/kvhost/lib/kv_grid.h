// The editable detail grid of document sheets ("kvGrid"): the shared grid model plus a
// descriptor per column (read-only, colours, kind of data, a bound picker, a closed list,
// masked) and the editing gestures. Hidden and format of a column are the grid's ColHidden
// and ColFormat.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kvhost/lib/grid_control.h"

namespace kvhost {

// What a column holds: a typed number must read as a number, a typed date as a date (kept
// as "yyyy-mm-dd").
enum class GridColumnKind { Text, Number, Date };

struct KvGridColumn {
  bool ReadOnly = false;
  int32_t BackColor = kNoColor;
  int32_t ForeColor = kNoColor;
  GridColumnKind Kind = GridColumnKind::Text;
  std::string PickerKey;  // the picker a cell of the column opens
  std::string List;       // a closed list of entries separated by "|"
  // The user may not read the column: front ends and printouts show "***" below the fixed
  // rows.
  bool Masked = false;
};

class KvGrid : public GridControl {
 public:
  KvGrid(std::string name, int index = -1) : GridControl("kvGrid", std::move(name), index) {}

  // Edits are taken only while the grid is editable; sheets set it with their edit mode.
  bool Editable = false;
  // Whether a person may add rows at the end and delete rows (while Editable).
  bool AllowUserAdd = true;
  bool AllowUserDelete = true;

  // A row that takes no edit (a let room); the flag moves with the row.
  bool& RowLocked(int row) { return GridRowAt(row).locked; }
  bool RowLocked(int row) const { return GridRowAt(row).locked; }

  // The descriptor of a column; throws like any grid member for a column that is not there.
  KvGridColumn& Column(int col);
  const KvGridColumn& Column(int col) const;
  // Resets a column: shown, no list, no picker, editable, no colours, text.
  void ResetColumn(int col);
  // A number or date column by its kind, when no ColDataType says otherwise.
  int ColValueType(int col) const override;

  // Before a typed text goes into a cell: the handler may change the text or cancel.
  std::function<void(int row, int col, std::string& text, bool& cancel)> BeforeEdit;
  // After a typed text went into the cell.
  std::function<void(int row, int col)> AfterEdit;
  std::function<void(int row, int col)> CellClick;
  std::function<void(int row, int col)> DblClick;
  // The current cell moved by a person's gesture (from old to new).
  std::function<void(int old_row, int old_col, int new_row, int new_col)> AfterRowColChange;
  // A row was added at the end by row_add.
  std::function<void(int row)> AfterRowAdd;
  // Before row_delete removes a row (after the grid's own question): the handler may refuse
  // (set cancel; it says why itself).
  std::function<void(int row, bool& cancel)> BeforeDeleteRow;
  std::function<void(int row)> AfterDeleteRow;

  // cell_edit (row, col, text): refused with the reason, changing nothing, when the grid is
  // hidden, disabled, locked or not Editable, the cell is in a fixed row or a read-only
  // column, or the text does not fit the column's kind. Otherwise Row and Col move there,
  // BeforeEdit runs, and unless it cancels the text goes into the cell and AfterEdit runs.
  // A locked row refuses edits too. cell_click and cell_dblclick (row, col): Row and Col move
  // there, then CellClick or DblClick; they work also while the grid is not editable.
  // col_width (col, text): the person sizes or hides a column, also while the grid is
  // locked. row_add: (Editable, AllowUserAdd) an empty row at the end becomes current, then
  // AfterRowAdd. row_delete (row): (Editable, AllowUserDelete, a data row) the grid asks
  // "是否删除当前行？" (yes/no, title "提示"); on yes BeforeDeleteRow may refuse, else the
  // row goes and AfterDeleteRow runs. Moves of the current cell raise AfterRowColChange.
  std::string Apply(const Gesture& gesture) override;

 protected:
  std::string StateText(int row, int col) const override;
  void ColsChanged() override { columns_.resize(static_cast<size_t>(Cols())); }
  void WriteOwnState(nlohmann::json& out) const override;

 private:
  std::string Edit(const Gesture& gesture);
  std::string AddRow();
  std::string DeleteRow(const Gesture& gesture);
  // Row and Col to (row, col), raising AfterRowColChange when they moved.
  void MoveTo(int row, int col);
  std::vector<KvGridColumn> columns_ = std::vector<KvGridColumn>(2);
};

}  // namespace kvhost
