// The list grid ("VsFlexGrid") of lists, reports and pickers: the shared grid model plus
// subtotal rows, sorting, and the gestures cell_click, cell_dblclick and scroll.
#pragma once

#include <functional>
#include <string>

#include "kvhost/lib/grid_control.h"

namespace kvhost {

// The functions of Subtotal.
namespace subtotal {
inline constexpr int kNone = 0;
inline constexpr int kClear = 1;  // removes all subtotal rows
inline constexpr int kSum = 2;
inline constexpr int kCount = 4;  // cells that are not empty
inline constexpr int kAverage = 5;
inline constexpr int kMax = 6;
inline constexpr int kMin = 7;
}  // namespace subtotal

// SubtotalPosition.
namespace subtotal_position {
inline constexpr int kBelow = 0;
inline constexpr int kAbove = 1;
}  // namespace subtotal_position

// The settings of Sort, which sorts by the column Col.
namespace grid_sort {
inline constexpr int kNone = 0;
inline constexpr int kGenericAscending = 1;  // numbers as numbers (before texts), texts as texts
inline constexpr int kGenericDescending = 2;
inline constexpr int kNumericAscending = 3;  // every cell through Val
inline constexpr int kNumericDescending = 4;
inline constexpr int kStringNoCaseAscending = 5;
inline constexpr int kStringNoCaseDescending = 6;
inline constexpr int kStringAscending = 7;  // byte order
inline constexpr int kStringDescending = 8;
}  // namespace grid_sort

// The arguments of Subtotal after its function.
struct SubtotalArgs {
  int group_on = -1;   // the group column; -1 for the grand total over all data rows
  int total_on = -1;   // the column that is totalled
  std::string format;  // number format of the totals; "" for the number-to-text rule
  int32_t back_color = kNoColor;
  int32_t fore_color = kNoColor;
  bool font_bold = false;
  std::string caption;      // "%s" stands for the group's value
  int match_from = -1;      // the first column compared for a group break; -1 for FixedCols
  bool total_only = false;  // leave the columns left of the group column empty
};

class VsFlexGrid : public GridControl {
 public:
  VsFlexGrid(std::string name, int index = -1)
      : GridControl("VsFlexGrid", std::move(name), index) {}

  // The control's version; 700 changes the integer part of the layout's number formats.
  int Version = 800;
  int SubtotalPosition = subtotal_position::kBelow;

  // Adds subtotal rows (or removes them all with subtotal::kClear). The data rows (those from
  // FixedRows on that are no subtotal rows) form groups: runs of rows whose texts agree in
  // the columns match_from..group_on; the grand total makes one group of all. Each group
  // gets one subtotal row, below or above it by SubtotalPosition, holding:
  //  * the total of the group's total_on cells (their texts through Val);
  //  * the caption, "%s" replaced by the group's value, in the group column (column
  //    FixedCols for the grand total);
  //  * unless total_only, the group's values in the columns from FixedCols to the left of the
  //    group column;
  //  * the colours and bold on the cells from the caption's column to the last column.
  // A group column that has subtotal rows already takes the new total into them, so one
  // call per total column builds one row per group. Subtotal rows of finer groups (a greater
  // group column) stay inside the group, those of coarser ones outside it.
  void Subtotal(int function, const SubtotalArgs& args = {});

  // Sorts the data rows by the column Col (grid_sort::...); subtotal rows stay where they
  // are and the rows between two of them are sorted among themselves, so each group keeps
  // its total. Rows that compare equal keep their order.
  void SetSort(int setting);

  // The first shown column from FixedCols on (or only col_index, when 0 or above) whose text
  // holds `text`, case of ASCII letters aside; -1 when none does. An empty text is held by
  // every cell.
  int ColumnHolding(int row, const std::string& text, int col_index = -1) const;
  // Shows the data rows that hold `text` in a shown column and hides the others (row height
  // 0), subtotal rows with them; an empty text shows every row again. The first row shown
  // becomes the top row. Returns the rows shown.
  int ShowRowsHolding(const std::string& text);

  std::function<void()> Click;
  std::function<void()> DblClick;
  std::function<void()> AfterScroll;
  std::function<void(int key_code, int shift)> KeyDown;

  // cell_click (row, col): Row and Col move there, then Click. cell_dblclick: the same, then
  // DblClick. scroll (row): TopRow moves there, then AfterScroll; the state then carries the
  // rows from there. keydown (row = the key code, col = the shift state, 0 when not given):
  // KeyDown. col_width (col, text): the person sizes or hides a column. search (text):
  // ShowRowsHolding, as a person typing into a list's search box.
  std::string Apply(const Gesture& gesture) override;

 private:
  struct Group;
  std::vector<Group> FindGroups(const SubtotalArgs& args) const;
  GridRow SubtotalRow(const Group& group, int function, const SubtotalArgs& args) const;
};

}  // namespace kvhost
