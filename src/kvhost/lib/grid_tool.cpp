#include "kvhost/lib/grid_tool.h"

#include <algorithm>

#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

std::string UpperAscii(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(),
                 [](unsigned char c) { return c < 0x80 ? std::toupper(c) : c; });
  return s;
}

bool RowHolds(const VsFlexGrid& grid, int row, const std::string& upper_text, int col_index,
              int& col) {
  for (int c = grid.FixedCols(); c < grid.Cols(); ++c) {
    if (col_index >= 0 && c != col_index) continue;
    if (!grid.IsColumnShown(c)) continue;
    if (UpperAscii(grid.TextMatrix(row, c)).find(upper_text) != std::string::npos) {
      col = c;
      return true;
    }
  }
  return false;
}

}  // namespace

bool GridTool::Search(VsFlexGrid& grid, int col_index, int after_row, int& row, int& col) const {
  const std::string upper = UpperAscii(text_);
  for (int r = std::max(after_row + 1, grid.FixedRows()); r < grid.Rows(); ++r) {
    if (grid.IsSubtotal(r) || grid.RowHeight(r) == 0) continue;
    if (RowHolds(grid, r, upper, col_index, col)) {
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

bool GridTool::Filter(VsFlexGrid& grid, int col_count) {
  auto* port = mrvk::CurrentUiPort();
  if (!port) return false;
  auto answer = port->InputBox("过滤内容:", "过滤", "");
  if (!answer) return false;
  const std::string upper = UpperAscii(*answer);
  for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
    int col = 0;
    const bool shown = upper.empty() || RowHolds(grid, r, upper, -1, col);
    (void)col_count;
    grid.RowHeight(r) = shown ? GridControl::kDefaultRowHeight : 0;
  }
  return true;
}

}  // namespace kvhost
