#include "mrvk/frame/list_grid.h"

#include <algorithm>

#include "mrvk/frame/grid_layout.h"

namespace mrvk {

void InitVsControl(kvhost::VsFlexGrid& grid, const std::string& format, int hidden_ids) {
  grid.Redraw = false;
  grid.SetFormatString(format);
  grid.ColAlignment(0) = kvhost::grid_align::kCenterCenter;
  for (int c = 1; c < grid.Cols(); ++c) grid.ColAlignment(c) = kvhost::grid_align::kLeftCenter;
  for (int c = std::max(0, grid.Cols() - hidden_ids); c < grid.Cols(); ++c)
    grid.ColHidden(c) = true;
  grid.Redraw = true;
  grid.RowHeightMin = static_cast<int>(grid.RowHeight(0) * 1.5);
}

void NumberRows(kvhost::VsFlexGrid& grid) {
  int n = 0;
  for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
    if (!grid.IsSubtotal(r)) grid.TextMatrix(r, 0) = std::to_string(++n);
  }
}

void RemoveGridRow(kvhost::VsFlexGrid& grid, int row) {
  if (row < grid.FixedRows() || row >= grid.Rows()) return;
  for (int r = row; r + 1 < grid.Rows(); ++r) {
    for (int c = 0; c < grid.Cols(); ++c) grid.TextMatrix(r, c) = grid.TextMatrix(r + 1, c);
    grid.RowHeight(r) = grid.RowHeight(r + 1);
  }
  grid.SetRows(grid.Rows() - 1);
  if (grid.Row() >= grid.Rows()) grid.SetRow(grid.Rows() - 1);
}

void WheelHook::Rate(const kvhost::VsFlexGrid& grid) { steps_ = WheelSteps(grid.Rows(), rate_); }

void WheelHook::Position(const kvhost::VsFlexGrid& grid) {
  position_ = WheelPosition(grid.TopRow(), rate_);
}

void WheelHook::Wheel(kvhost::VsFlexGrid& grid, int step) {
  if (grid.Rows() <= fixed_rows_) return;
  grid.SetTopRow(WheelTopRow(step, rate_, grid.Rows()));
  Position(grid);
}

}  // namespace mrvk
