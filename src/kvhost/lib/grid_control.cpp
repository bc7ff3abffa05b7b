#include "kvhost/lib/grid_control.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "kvhost/lib/display_format.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

[[noreturn]] void BadIndex(const std::string& grid, const char* what, int index) {
  throw mrvk::VbError(mrvk::vb_error::kSubscriptOutOfRange,
                      grid + ": " + what + " " + std::to_string(index) + " 不存在");
}

// A text "yyyy-mm-dd" of a real date.
bool IsIsoDate(const std::string& text) {
  return text.size() == 10 && text[4] == '-' && text[7] == '-' && mrvk::ParseDate(text);
}

}  // namespace

GridControl::GridControl(std::string type_name, std::string name, int index)
    : Control(std::move(type_name), std::move(name), index) {
  SetCols(/*cols=*/2);
  SetRows(/*rows=*/2);
}

void GridControl::SetRows(int rows) {
  rows = std::max(rows, 0);
  if (rows < Rows()) {
    rows_.resize(static_cast<size_t>(rows));
  } else {
    rows_.reserve(static_cast<size_t>(rows));
    while (Rows() < rows) rows_.push_back(NewRow());
  }
  fixed_rows_ = std::min(fixed_rows_, rows);
  row_ = std::clamp(row_, 0, std::max(rows - 1, 0));
}

void GridControl::RemoveItem(int row) {
  GridRowAt(row);
  rows_.erase(rows_.begin() + row);
  row_ = std::clamp(row_, 0, std::max(Rows() - 1, 0));
}

void GridControl::SetCols(int cols) {
  cols = std::max(cols, 0);
  columns_.resize(static_cast<size_t>(cols));
  for (GridRow& row : rows_) {
    row.text.resize(static_cast<size_t>(cols));
    if (!row.style.empty()) row.style.resize(static_cast<size_t>(cols));
  }
  fixed_cols_ = std::min(fixed_cols_, cols);
  col_ = std::clamp(col_, 0, std::max(cols - 1, 0));
  ColsChanged();
}

void GridControl::SetFixedRows(int fixed_rows) {
  if (fixed_rows < 0) BadIndex(DisplayName(), "FixedRows", fixed_rows);
  if (fixed_rows > Rows()) SetRows(fixed_rows);
  fixed_rows_ = fixed_rows;
}

void GridControl::SetFixedCols(int fixed_cols) {
  if (fixed_cols < 0) BadIndex(DisplayName(), "FixedCols", fixed_cols);
  if (fixed_cols > Cols()) SetCols(fixed_cols);
  fixed_cols_ = fixed_cols;
}

void GridControl::SetRow(int row) {
  GridRowAt(row);
  row_ = row;
}

void GridControl::SetCol(int col) {
  ColumnAt(col);
  col_ = col;
}

int GridControl::TopRow() const {
  return std::clamp(top_row_, fixed_rows_, std::max(Rows() - 1, fixed_rows_));
}

void GridControl::SetTopRow(int row) { top_row_ = row; }

std::string& GridControl::TextMatrix(int row, int col) {
  GridRow& r = GridRowAt(row);
  ColumnAt(col);
  return r.text[static_cast<size_t>(col)];
}

const std::string& GridControl::TextMatrix(int row, int col) const {
  const GridRow& r = GridRowAt(row);
  ColumnAt(col);
  return r.text[static_cast<size_t>(col)];
}

std::string GridControl::FormatString() const {
  std::string out;
  for (int c = 0; c < Cols(); ++c) {
    if (c > 0) out += "|";
    if (Rows() > 0) out += TextMatrix(0, c);
  }
  return out;
}

void GridControl::SetFormatString(const std::string& format) {
  std::vector<std::string> captions;
  size_t start = 0;
  while (true) {
    const size_t bar = format.find('|', start);
    captions.push_back(format.substr(start, bar - start));
    if (bar == std::string::npos) break;
    start = bar + 1;
  }
  SetCols(static_cast<int>(captions.size()));
  if (Rows() == 0) SetRows(/*rows=*/1);
  for (int c = 0; c < Cols(); ++c) {
    const std::string& caption = captions[static_cast<size_t>(c)];
    const size_t end = caption.find_last_not_of(' ');
    TextMatrix(0, c) = end == std::string::npos ? "" : caption.substr(0, end + 1);
    ColWidth(c) = CaptionWidth(caption);
  }
}

mrvk::Variant GridControl::Cell(int property, int row, int col) const {
  const GridRow& r = GridRowAt(row);
  ColumnAt(col);
  const CellStyle style = r.style.empty() ? CellStyle{} : r.style[static_cast<size_t>(col)];
  switch (property) {
    case cell_property::kText:
      return mrvk::Variant(r.text[static_cast<size_t>(col)]);
    case cell_property::kAlignment:
      return mrvk::Variant(style.alignment);
    case cell_property::kBackColor:
      return mrvk::Variant(style.back);
    case cell_property::kForeColor:
      return mrvk::Variant(style.fore);
    case cell_property::kFontBold:
      return mrvk::Variant(style.bold);
  }
  throw mrvk::VbError(mrvk::vb_error::kSubscriptOutOfRange,
                      DisplayName() + ": Cell 属性 " + std::to_string(property) + " 不支持");
}

void GridControl::SetCell(int property, int r1, int c1, int r2, int c2,
                          const mrvk::Variant& value) {
  if (r1 > r2) std::swap(r1, r2);
  if (c1 > c2) std::swap(c1, c2);
  GridRowAt(r1);
  GridRowAt(r2);
  ColumnAt(c1);
  ColumnAt(c2);
  for (int row = r1; row <= r2; ++row) {
    GridRow& r = rows_[static_cast<size_t>(row)];
    if (property != cell_property::kText && r.style.empty()) r.style.resize(columns_.size());
    for (int col = c1; col <= c2; ++col) {
      const auto c = static_cast<size_t>(col);
      switch (property) {
        case cell_property::kText:
          r.text[c] = value.ToString();
          break;
        case cell_property::kAlignment:
          r.style[c].alignment = value.ToLong();
          break;
        case cell_property::kBackColor:
          r.style[c].back = value.ToLong();
          break;
        case cell_property::kForeColor:
          r.style[c].fore = value.ToLong();
          break;
        case cell_property::kFontBold:
          r.style[c].bold = value.ToDouble() != 0;
          break;
        default:
          throw mrvk::VbError(
              mrvk::vb_error::kSubscriptOutOfRange,
              DisplayName() + ": Cell 属性 " + std::to_string(property) + " 不支持");
      }
    }
  }
}

void GridControl::LoadArray(const mrvk::RowsArray& data) {
  SetRows(fixed_rows_);
  const size_t fields =
      std::min(data.fields, static_cast<size_t>(std::max(Cols() - fixed_cols_, 0)));
  rows_.reserve(static_cast<size_t>(fixed_rows_) + data.rows);
  const size_t first = static_cast<size_t>(fixed_cols_);
  for (size_t c = first; c < columns_.size(); ++c) columns_[c].loaded_type = grid_type::kEmpty;
  for (size_t f = 0; f < fields; ++f) {
    int type = grid_type::kEmpty;
    for (size_t r = 0; r < data.rows && type != grid_type::kString; ++r) {
      const mrvk::Variant& v = data.at(f, r);
      if (v.IsNull() || v.IsEmpty()) continue;
      int one = grid_type::kString;
      if (v.IsNumeric())
        one = grid_type::kDouble;
      else if (v.type() == mrvk::Variant::Type::Date || (v.IsString() && IsIsoDate(v.AsString())))
        one = grid_type::kDate;
      type = type == grid_type::kEmpty || type == one ? one : grid_type::kString;
    }
    columns_[first + f].loaded_type = type;
  }
  for (size_t r = 0; r < data.rows; ++r) {
    GridRow& row = rows_.emplace_back();
    row.text.resize(columns_.size());
    for (size_t f = 0; f < fields; ++f) {
      const mrvk::Variant& v = data.at(f, r);
      if (v.IsString())
        row.text[first + f] = v.AsString();
      else if (!v.IsNull() && !v.IsEmpty())
        row.text[first + f] = v.ToString();
    }
  }
}

int GridControl::ColValueType(int col) const {
  const GridColumn& column = ColumnAt(col);
  return column.data_type != grid_type::kEmpty ? column.data_type : column.loaded_type;
}

std::string GridControl::DisplayText(int row, int col) const {
  const std::string& text = TextMatrix(row, col);
  if (row < fixed_rows_) return text;
  return FormatCellText(text, ColFormat(col));
}

GridControl::GridColumn& GridControl::ColumnAt(int col) {
  if (col < 0 || col >= Cols()) BadIndex(DisplayName(), "列", col);
  return columns_[static_cast<size_t>(col)];
}

const GridControl::GridColumn& GridControl::ColumnAt(int col) const {
  if (col < 0 || col >= Cols()) BadIndex(DisplayName(), "列", col);
  return columns_[static_cast<size_t>(col)];
}

GridControl::GridRow& GridControl::GridRowAt(int row) {
  if (row < 0 || row >= Rows()) BadIndex(DisplayName(), "行", row);
  return rows_[static_cast<size_t>(row)];
}

const GridControl::GridRow& GridControl::GridRowAt(int row) const {
  if (row < 0 || row >= Rows()) BadIndex(DisplayName(), "行", row);
  return rows_[static_cast<size_t>(row)];
}

GridControl::GridRow GridControl::NewRow() const {
  GridRow row;
  row.text.resize(columns_.size());
  return row;
}

std::string GridControl::CheckGestureCell(const Gesture& g) const {
  if (g.row < 0 || g.row >= Rows() || g.col < 0 || g.col >= Cols())
    return DisplayName() + " has no cell (" + std::to_string(g.row) + ", " + std::to_string(g.col) +
           ")";
  return "";
}

std::string GridControl::ApplyColWidth(const Gesture& g) {
  if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
  if (g.col < 0 || g.col >= Cols())
    return DisplayName() + " has no column " + std::to_string(g.col);
  const std::string width = mrvk::Trim(g.text);
  if (!IsPlainNumber(width) || width.find('.') != std::string::npos || width[0] == '-' ||
      width.size() > 5 || std::stoi(width) > 32767)
    return DisplayName() + " takes a column width from 0 to 32767, not \"" + g.text + "\"";
  ColWidth(g.col) = std::stoi(width);
  return "";
}

void GridControl::ReplaceRows(std::vector<GridRow> rows) {
  rows_ = std::move(rows);
  row_ = std::clamp(row_, 0, std::max(Rows() - 1, 0));
}

void GridControl::WriteOwnState(nlohmann::json& out) const {
  out["rows"] = Rows();
  out["cols"] = Cols();
  out["fixed_rows"] = fixed_rows_;
  out["fixed_cols"] = fixed_cols_;
  out["frozen_cols"] = FrozenCols;
  out["row"] = row_;
  out["col"] = col_;
  out["top_row"] = TopRow();
  out["merge_cells"] = MergeCells;
  out["word_wrap"] = WordWrap;
  out["grid_color"] = GridColor;
  out["redraw"] = Redraw;
  nlohmann::json columns = nlohmann::json::array();
  for (const GridColumn& c : columns_) {
    nlohmann::json col = {{"width", c.width},         {"hidden", c.hidden},
                          {"alignment", c.alignment}, {"data_type", c.data_type},
                          {"format", c.format},       {"merge", c.merge}};
    columns.push_back(std::move(col));
  }
  out["columns"] = std::move(columns);
  // The fixed rows always, then at most kStateWindowRows data rows from TopRow that are not
  // filtered out (row height 0); with rows filtered out, how many rows show in all, above the
  // window, and where the window before this one starts.
  std::vector<int> shown;
  for (int r = 0; r < fixed_rows_; ++r) shown.push_back(r);
  const int top = TopRow();
  int shown_rows = 0;
  std::vector<int> above;  // the rows shown above the window
  for (int r = fixed_rows_; r < Rows(); ++r) {
    if (rows_[static_cast<size_t>(r)].height == 0) continue;
    ++shown_rows;
    if (r < top) {
      above.push_back(r);
    } else if (static_cast<int>(shown.size()) - fixed_rows_ < kStateWindowRows) {
      shown.push_back(r);
    }
  }
  out["window"] = {{"first", top}, {"count", static_cast<int>(shown.size()) - fixed_rows_}};
  if (shown_rows < Rows() - fixed_rows_) {
    out["window"]["shown"] = shown_rows;
    out["window"]["above"] = static_cast<int>(above.size());
    if (!above.empty()) {
      const size_t back = std::min(above.size(), static_cast<size_t>(kStateWindowRows));
      out["window"]["previous"] = above[above.size() - back];
    }
  }
  nlohmann::json cells = nlohmann::json::array();
  for (int r : shown) {
    const GridRow& row = rows_[static_cast<size_t>(r)];
    nlohmann::json texts = nlohmann::json::array();
    for (int c = 0; c < Cols(); ++c) texts.push_back(StateText(r, c));
    nlohmann::json entry = {{"row", r}, {"text", std::move(texts)}};
    if (row.height != kDefaultRowHeight) entry["height"] = row.height;
    if (row.locked) entry["locked"] = true;
    if (row.merge) entry["merge"] = true;
    if (row.subtotal != kDataRow) entry["subtotal"] = row.subtotal;
    nlohmann::json styles = nlohmann::json::array();
    for (size_t c = 0; c < row.style.size(); ++c) {
      const CellStyle& s = row.style[c];
      if (s.back == kNoColor && s.fore == kNoColor && s.alignment < 0 && !s.bold) continue;
      nlohmann::json style = {{"col", c}};
      if (s.back != kNoColor) style["back"] = s.back;
      if (s.fore != kNoColor) style["fore"] = s.fore;
      if (s.alignment >= 0) style["alignment"] = s.alignment;
      if (s.bold) style["bold"] = true;
      styles.push_back(std::move(style));
    }
    if (!styles.empty()) entry["styles"] = std::move(styles);
    cells.push_back(std::move(entry));
  }
  out["cells"] = std::move(cells);
}

}  // namespace kvhost
