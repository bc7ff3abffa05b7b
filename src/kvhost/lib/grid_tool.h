// GridTool: the helper a report or list sheet creates for finding and filtering the rows its
// grid holds, with the host's own dialogs (input boxes through the UI port). It works on the
// grid's rows, never on the database.
#pragma once

#include <string>

#include "kvhost/lib/vs_flex_grid.h"

namespace kvhost {

class GridTool {
 public:
  // Asks for a text ("查找内容:", title "查找") and selects the first data row after
  // last_row (from the first data row when last_row is below it) that holds the text in a
  // shown column, case of ASCII letters aside; with col_index 0 or above only that column is
  // searched. The row becomes Row and comes into view; last_row and last_col get where the
  // hit lies. False when the text is cancelled or empty or nothing matches (the grid is then
  // unchanged).
  bool Find(VsFlexGrid& grid, int col_index, int flag, int& last_row, int& last_col);
  // The next row after `row` that holds the last find's text; as Find otherwise.
  bool FindNext(VsFlexGrid& grid, int col_index, int& row, int& last_col);
  // Asks for a text ("过滤内容:", title "过滤") and hides the data rows that do not hold it
  // (row height 0); an empty text shows all rows again. False when cancelled.
  bool Filter(VsFlexGrid& grid, int col_count);

 private:
  bool Search(VsFlexGrid& grid, int col_index, int after_row, int& row, int& col) const;
  std::string text_;
};

}  // namespace kvhost
