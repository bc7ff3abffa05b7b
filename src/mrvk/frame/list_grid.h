// The shared set-up and upkeep of a list grid (a read-only VsFlexGrid whose column 0 holds
// running numbers and whose last columns hold IDs), used by the list sheets and reports.
#pragma once

#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {

// InitVsControl: with Redraw off, Cols and the header string; column 0 centred, the others
// left; the last `hidden_ids` columns hidden; Redraw on. The minimum row height becomes the
// header's height times 1.5.
void InitVsControl(kvhost::VsFlexGrid& grid, const std::string& format, int hidden_ids);

// Writes 1, 2, 3 ... into column 0 of the data rows; subtotal rows keep their text.
void NumberRows(kvhost::VsFlexGrid& grid);

// Removes a data row; the rows below it move up with their texts and heights. Row stays on
// the same index, or on the last row when the removed row was the last.
void RemoveGridRow(kvhost::VsFlexGrid& grid, int row);

// The wheel hook of one grid: where the wheel stands and how many steps it has. A front end
// scrolls the grid by its scroll gesture; the hook keeps the step arithmetic of the wheel.
class WheelHook {
 public:
  explicit WheelHook(int rate) : rate_(rate) {}
  int rate() const { return rate_; }
  void SetFixedRows(int count) { fixed_rows_ = count; }
  // After a load: the number of wheel steps of the grid's rows.
  void Rate(const kvhost::VsFlexGrid& grid);
  // After a scroll: the step the grid's TopRow stands at.
  void Position(const kvhost::VsFlexGrid& grid);
  int steps() const { return steps_; }
  int position() const { return position_; }
  // mcMouseEvent_Wheel(n): moves the grid's TopRow to wheel step n.
  void Wheel(kvhost::VsFlexGrid& grid, int step);

 private:
  int rate_;
  int fixed_rows_ = 1;
  int steps_ = 0;
  int position_ = 0;
};

}  // namespace mrvk
