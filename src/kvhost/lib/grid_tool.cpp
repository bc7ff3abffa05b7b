#include "kvhost/lib/grid_tool.h"

#include <algorithm>

#include "mrvk/frame/vb.h"

namespace kvhost {
bool GridTool::Search(VsFlexGrid& grid, int col_index, int after_row, int& row, int& col) const {
  for (int r = std::max(after_row + 1, grid.FixedRows()); r < grid.Rows(); ++r) {
    if (grid.IsSubtotal(r) || grid.RowHeight(r) == 0) continue;
    if (const int hit = grid.ColumnHolding(r, text_, col_index); hit >= 0) {
      col = hit;
      row = r;
      grid.SetRow(r);
      grid.SetTopRow(r);
      return true;
    }
  }
  return false;
}

bool GridTool::Find(VsFlexGrid& grid, int col_index, int, int& last_row, int& last_col) {
  auto* port = mrvk::CurrentUiPort();
  if (!port) return false;
  auto answer = port->InputBox("查找内容:", "查找", text_);
  if (!answer || answer->empty()) return false;
  text_ = *answer;
  return Search(grid, col_index, grid.FixedRows() - 1, last_row, last_col);
}

bool GridTool::FindNext(VsFlexGrid& grid, int col_index, int& row, int& last_col) {
  if (text_.empty()) return false;
  return Search(grid, col_index, row, row, last_col);
}

bool GridTool::Filter(VsFlexGrid& grid, int /*col_count*/) {
  auto* port = mrvk::CurrentUiPort();
  if (!port) return false;
  auto answer = port->InputBox("过滤内容:", "过滤", "");
  if (!answer) return false;
  grid.ShowRowsHolding(*answer);
  return true;
}

}  // namespace kvhost
