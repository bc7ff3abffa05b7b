// The layout of a screen's grids and fields, kept in one small file per screen in the folder
// "selfbb" under the host's program folder (the shared procedures of mPub): the layout path,
// LoadGridLayout and SaveGridLayout of a list grid, the colour split, and the walk over a
// screen's controls, sbGetFormStatus and sbSaveFormStatus. Then the wheel arithmetic of the
// list grids. The procedures go on past failures: a statement that fails (a value the grid
// refuses) is skipped, silently.
#pragma once

#include <cstdint>
#include <string>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {

// The control's Index, or -1 when it is not in a control array.
int16_t GetIndex(const kvhost::Control& control);

// AppPath + "/selfbb/" + name + ".txt"; the folder is made when it is missing.
std::string LayoutPath(const std::string& name, IHostContext& context);

// The suffix of a grid's sections: "_" + Index when the grid has one, with "_" + Name in
// front when the upper-cased Name is not "VS": "" for Vs, "_Vs2_1" for Vs2(1).
std::string GridSuffix(const kvhost::Control& grid);

// Applies the layout file to the grid: per column hidden, width and, unless widthsOnly,
// sort, merge, data type, format, alignment and group/total settings; then, unless
// widthsOnly, the subtotal rows, the row heights, frozen columns, grid colour and word wrap.
// A file that does not exist gets the grid's present layout (not with widthsOnly).
void LoadGridLayout(const std::string& file, kvhost::VsFlexGrid& grid, bool widthsOnly,
                    IHostContext& context);

// Writes the grid's layout. The settings only a person puts in the file (sort, decimals,
// value types, groups, totals, clearing totals) are never written, so saving keeps them.
void SaveGridLayout(const std::string& file, kvhost::VsFlexGrid& grid, bool widthsOnly);

// Splits a colour into its red, green and blue parts; a system colour (the high bit set,
// its index in the low byte) is first translated to the colour it stands for. False, with
// the parts unchanged, for a colour that stands for nothing.
bool SplitColour(int32_t colour, int& r, int& g, int& b);

// The walk over a screen's controls, in the screen's order, restoring (sbGetFormStatus) or
// saving (sbSaveFormStatus) each control's state in the section "Form" of the file, under
// the key of its upper-cased type name + "_" + Name (+ "_" + Index in a control array);
// list grids go through LoadGridLayout and SaveGridLayout.
void sbGetFormStatus(const std::string& pFile, bool pbOnlyColWidth,
                     const kvhost::ControlList& controls, IHostContext& context);
void sbSaveFormStatus(const std::string& pFile, bool pbOnlyColWidth,
                      const kvhost::ControlList& controls);

// The wheel: the rate R is the system option "mouseeventscrollrate", 5 when it is 0.
int WheelRate(IHostContext& context);
// The number of wheel steps of a grid of `rows` rows: the integer part of (rows - 1) / R.
int WheelSteps(int rows, int rate);
// The wheel position of a grid scrolled to top_row: the integer part of top_row / R.
int WheelPosition(int top_row, int rate);
// mcMouseEvent_Wheel(n): the TopRow for wheel step n: (n - 1) x R, at most rows - 1, when n
// is at least R; n itself below R.
int WheelTopRow(int step, int rate, int rows);

}  // namespace mrvk
