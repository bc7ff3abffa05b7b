#include "kvhost/lib/vs_flex_grid.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "kvhost/lib/display_format.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

// A run of data rows that one subtotal row closes, with the aggregate of its total column.
struct VsFlexGrid::Group {
  size_t first_row = 0;
  size_t last_row = 0;
  double sum = 0;
  int count = 0;  // cells that are not empty
  double max = std::numeric_limits<double>::lowest();
  double min = std::numeric_limits<double>::max();

  void Add(const std::string& text) {
    if (text.empty()) return;
    const double v = mrvk::Val(text);
    sum += v;
    ++count;
    max = std::max(max, v);
    min = std::min(min, v);
  }
  double Result(int function) const {
    switch (function) {
      case subtotal::kCount:
        return count;
      case subtotal::kAverage:
        return count > 0 ? sum / count : 0;
      case subtotal::kMax:
        return count > 0 ? max : 0;
      case subtotal::kMin:
        return count > 0 ? min : 0;
      default:
        return sum;
    }
  }
};

namespace {

bool SameKey(const std::vector<std::string>& a, const std::vector<std::string>& b, int from,
             int to) {
  for (int c = from; c <= to; ++c) {
    if (a[static_cast<size_t>(c)] != b[static_cast<size_t>(c)]) return false;
  }
  return true;
}

std::string Lower(const std::string& text) {
  std::string out = text;
  for (char& ch : out) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  return out;
}

// a < b under the ascending form of a sort setting.
bool SortsBefore(int setting, const std::string& a, const std::string& b) {
  switch (setting) {
    case grid_sort::kGenericAscending:
    case grid_sort::kGenericDescending: {
      const bool na = IsPlainNumber(a);
      const bool nb = IsPlainNumber(b);
      if (na && nb) return mrvk::Val(a) < mrvk::Val(b);
      if (na != nb) return na;
      return a < b;
    }
    case grid_sort::kNumericAscending:
    case grid_sort::kNumericDescending:
      return mrvk::Val(a) < mrvk::Val(b);
    case grid_sort::kStringNoCaseAscending:
    case grid_sort::kStringNoCaseDescending:
      return Lower(a) < Lower(b);
    default:
      return a < b;
  }
}

}  // namespace

std::vector<VsFlexGrid::Group> VsFlexGrid::FindGroups(const SubtotalArgs& a) const {
  const int from = std::min(a.match_from >= 0 ? a.match_from : FixedCols(), a.group_on);
  std::vector<Group> groups;
  const GridRow* previous = nullptr;
  for (size_t r = static_cast<size_t>(FixedRows()); r < rows_.size(); ++r) {
    const GridRow& row = rows_[r];
    if (row.subtotal != kDataRow) continue;
    if (!previous || (a.group_on >= 0 && !SameKey(previous->text, row.text, from, a.group_on))) {
      groups.emplace_back();
      groups.back().first_row = r;
    }
    groups.back().last_row = r;
    groups.back().Add(row.text[static_cast<size_t>(a.total_on)]);
    previous = &row;
  }
  return groups;
}

GridControl::GridRow VsFlexGrid::SubtotalRow(const Group& group, int function,
                                             const SubtotalArgs& a) const {
  GridRow row = NewRow();
  row.subtotal = a.group_on;
  row.height = rows_[group.first_row].height;
  const std::vector<std::string>& first = rows_[group.first_row].text;
  if (a.group_on >= 0 && !a.total_only) {
    for (int c = FixedCols(); c < a.group_on; ++c)
      row.text[static_cast<size_t>(c)] = first[static_cast<size_t>(c)];
  }
  const int caption_col = std::max(a.group_on, FixedCols());
  if (caption_col < Cols()) {
    std::string caption = a.caption;
    if (const size_t at = caption.find("%s"); at != std::string::npos)
      caption.replace(at, 2, a.group_on >= 0 ? first[static_cast<size_t>(a.group_on)] : "");
    row.text[static_cast<size_t>(caption_col)] = caption;
  }
  const std::string total = mrvk::NumberText(group.Result(function));
  row.text[static_cast<size_t>(a.total_on)] = FormatCellText(total, a.format);
  if (a.back_color != kNoColor || a.fore_color != kNoColor || a.font_bold) {
    row.style.resize(static_cast<size_t>(Cols()));
    for (int c = caption_col; c < Cols(); ++c) {
      CellStyle& s = row.style[static_cast<size_t>(c)];
      s.back = a.back_color;
      s.fore = a.fore_color;
      s.bold = a.font_bold;
    }
  }
  return row;
}

void VsFlexGrid::Subtotal(int function, const SubtotalArgs& a) {
  if (function == subtotal::kNone) return;
  const size_t fixed = static_cast<size_t>(FixedRows());
  if (function == subtotal::kClear) {
    std::vector<GridRow> kept;
    kept.reserve(rows_.size());
    for (size_t r = 0; r < rows_.size(); ++r) {
      if (r < fixed || rows_[r].subtotal == kDataRow) kept.push_back(std::move(rows_[r]));
    }
    ReplaceRows(std::move(kept));
    return;
  }
  ColumnAt(a.total_on);
  if (a.group_on >= 0) ColumnAt(a.group_on);
  const std::vector<Group> groups = FindGroups(a);

  // A group column that has its subtotal rows already takes the new total into them.
  std::vector<size_t> level_rows;
  for (size_t r = fixed; r < rows_.size(); ++r) {
    if (rows_[r].subtotal == a.group_on) level_rows.push_back(r);
  }
  if (!level_rows.empty() && level_rows.size() == groups.size()) {
    for (size_t i = 0; i < groups.size(); ++i) {
      const std::string total = mrvk::NumberText(groups[i].Result(function));
      rows_[level_rows[i]].text[static_cast<size_t>(a.total_on)] = FormatCellText(total, a.format);
    }
    return;
  }

  // Where each group's row goes: below its last data row after the subtotal rows of finer
  // groups that close there, or above its first data row before them.
  std::vector<size_t> positions;
  std::vector<GridRow> new_rows;
  for (const Group& g : groups) {
    size_t p = 0;
    if (SubtotalPosition == subtotal_position::kAbove) {
      p = g.first_row;
      while (p > fixed && rows_[p - 1].subtotal != kDataRow && rows_[p - 1].subtotal > a.group_on)
        --p;
    } else {
      p = g.last_row + 1;
      while (p < rows_.size() && rows_[p].subtotal != kDataRow && rows_[p].subtotal > a.group_on)
        ++p;
    }
    positions.push_back(p);
    new_rows.push_back(SubtotalRow(g, function, a));
  }
  std::vector<GridRow> merged;
  merged.reserve(rows_.size() + new_rows.size());
  size_t next = 0;
  for (size_t r = 0; r <= rows_.size(); ++r) {
    while (next < positions.size() && positions[next] == r)
      merged.push_back(std::move(new_rows[next++]));
    if (r < rows_.size()) {
      // Rows of this group column from an earlier layout of other data are replaced.
      if (r >= fixed && rows_[r].subtotal == a.group_on) continue;
      merged.push_back(std::move(rows_[r]));
    }
  }
  ReplaceRows(std::move(merged));
}

void VsFlexGrid::SetSort(int setting) {
  if (setting == grid_sort::kNone) return;
  const size_t col = static_cast<size_t>(Col());
  const bool descending = setting % 2 == 0;
  auto before = [&](const GridRow& a, const GridRow& b) {
    return descending ? SortsBefore(setting, b.text[col], a.text[col])
                      : SortsBefore(setting, a.text[col], b.text[col]);
  };
  auto run_start = rows_.begin() + std::min(FixedRows(), Rows());
  while (run_start != rows_.end()) {
    auto run_end = std::find_if(run_start, rows_.end(),
                                [](const GridRow& r) { return r.subtotal != kDataRow; });
    std::stable_sort(run_start, run_end, before);
    run_start = run_end == rows_.end() ? run_end : run_end + 1;
  }
}

int VsFlexGrid::ColumnHolding(int row, const std::string& text, int col_index) const {
  const std::string upper = mrvk::UCase(text);
  for (int c = FixedCols(); c < Cols(); ++c) {
    if (col_index >= 0 && c != col_index) continue;
    if (!IsColumnShown(c)) continue;
    if (mrvk::UCase(TextMatrix(row, c)).find(upper) != std::string::npos) return c;
  }
  return -1;
}

int VsFlexGrid::ShowRowsHolding(const std::string& text) {
  int shown = 0;
  int first = -1;
  for (int r = FixedRows(); r < Rows(); ++r) {
    const bool show = text.empty() || ColumnHolding(r, text) >= 0;
    RowHeight(r) = show ? kDefaultRowHeight : 0;
    if (!show) continue;
    ++shown;
    if (first < 0) first = r;
  }
  if (first >= 0) SetTopRow(first);
  return shown;
}

std::string VsFlexGrid::Apply(const Gesture& g) {
  if (g.kind == "col_width") return ApplyColWidth(g);
  if (g.kind != "cell_click" && g.kind != "cell_dblclick" && g.kind != "scroll" &&
      g.kind != "keydown" && g.kind != "search")
    return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
  if (g.kind == "search") {
    ShowRowsHolding(g.text);
    return "";
  }
  if (g.kind == "keydown") {
    if (g.row < 0) return DisplayName() + ": keydown needs the key code in row";
    if (KeyDown) KeyDown(g.row, g.col < 0 ? 0 : g.col);
    return "";
  }
  if (g.kind == "scroll") {
    if (g.row < 0 || g.row >= Rows()) return DisplayName() + " has no row " + std::to_string(g.row);
    SetTopRow(g.row);
    if (AfterScroll) AfterScroll();
    return "";
  }
  if (std::string why = CheckGestureCell(g); !why.empty()) return why;
  SetRow(g.row);
  SetCol(g.col);
  if (g.kind == "cell_click" && Click) Click();
  if (g.kind == "cell_dblclick" && DblClick) DblClick();
  return "";
}

}  // namespace kvhost
