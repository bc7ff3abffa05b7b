#include "kvhost/grid_export.h"

#include <xlsxwriter.h>

#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

#include "kvhost/lib/display_format.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

constexpr int kLargeGridRows = 20000;

struct WorkbookCloser {
  void operator()(lxw_workbook* workbook) const {
    if (workbook) workbook_close(workbook);
  }
};

// 0x00BBGGRR as the spreadsheet's 0xRRGGBB.
lxw_color_t SheetColour(int32_t colour) {
  const uint32_t c = static_cast<uint32_t>(colour);
  return ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
}

// A sheet name: at most 31 characters (counted as UTF-8 code points), none of []:*?/\.
std::string SheetName(const std::string& name) {
  std::string out;
  int count = 0;
  for (size_t i = 0; i < name.size() && count < 31;) {
    const auto lead = static_cast<unsigned char>(name[i]);
    const size_t len = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    const std::string ch = name.substr(i, len);
    out += std::string("[]:*?/\\").find(ch[0]) != std::string::npos && len == 1 ? "_" : ch;
    ++count;
    i += len;
  }
  return out.empty() ? "Sheet1" : out;
}

// The formats of a workbook, one per look, made on first use.
class Formats {
 public:
  explicit Formats(lxw_workbook* workbook) : workbook_(workbook) {}
  lxw_format* Get(const std::string& number_format, bool bold, int32_t back, int32_t fore) {
    if (number_format.empty() && !bold && back == kNoColor && fore == kNoColor) return nullptr;
    auto key = std::make_tuple(number_format, bold, back, fore);
    if (auto it = cache_.find(key); it != cache_.end()) return it->second;
    lxw_format* format = workbook_add_format(workbook_);
    if (!number_format.empty()) format_set_num_format(format, number_format.c_str());
    if (bold) format_set_bold(format);
    if (back != kNoColor) format_set_bg_color(format, SheetColour(back));
    if (fore != kNoColor) format_set_font_color(format, SheetColour(fore));
    cache_.emplace(key, format);
    return format;
  }

 private:
  lxw_workbook* workbook_;
  std::map<std::tuple<std::string, bool, int32_t, int32_t>, lxw_format*> cache_;
};

// A number format the spreadsheet takes: the grid's own, when it has a digit placeholder.
std::string SheetNumberFormat(const std::string& format) {
  return format.find_first_of("0#") == std::string::npos ? "" : format;
}

// How a column's cells are written, by the type of its data (GridControl::ColValueType): a
// column of no known type holds numbers when it shows them with a number format, else texts.
enum class ColumnKind { Text, Number, Date };

ColumnKind KindOf(const GridControl& grid, int col) {
  switch (grid.ColValueType(col)) {
    case grid_type::kInteger:
    case grid_type::kLong:
    case grid_type::kSingle:
    case grid_type::kDouble:
    case grid_type::kCurrency:
      return ColumnKind::Number;
    case grid_type::kDate:
      return ColumnKind::Date;
    case grid_type::kEmpty:
      return SheetNumberFormat(grid.ColFormat(col)).empty() ? ColumnKind::Text : ColumnKind::Number;
    default:
      return ColumnKind::Text;
  }
}

// A data cell of a number column that holds a plain number and shows it (not masked).
bool IsNumberCell(const GridControl& grid, int row, int col, ColumnKind kind) {
  return kind == ColumnKind::Number && row >= grid.FixedRows() &&
         grid.ShownText(row, col) == grid.DisplayText(row, col) &&
         IsPlainNumber(grid.TextMatrix(row, col));
}

// The date of a data cell of a date column that holds a date without a time and shows it.
std::optional<mrvk::Date> DateCell(const GridControl& grid, int row, int col, ColumnKind kind) {
  const std::string& stored = grid.TextMatrix(row, col);
  if (kind != ColumnKind::Date || row < grid.FixedRows() ||
      grid.ShownText(row, col) != grid.DisplayText(row, col) ||
      stored.find_first_of(" T") != std::string::npos)
    return std::nullopt;
  return mrvk::ParseDate(stored);
}

// A text that a spreadsheet would take for a formula ("=", "+", "-", "@", or a tab or
// carriage return before one) gets a leading quote, so it opens as the text it is.
std::string CsvText(const std::string& text) {
  if (!text.empty() && std::string_view("=+-@\t\r").find(text[0]) != std::string_view::npos)
    return "'" + text;
  return text;
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string out = "\"";
  for (char ch : text) {
    if (ch == '"') out += '"';
    out += ch;
  }
  return out + "\"";
}

}  // namespace

bool ExportGridXlsx(const GridControl& grid, const std::string& path, const std::string& sheet_name,
                    std::string& error) {
  // A large grid is written row by row without keeping the sheet in memory (its texts then
  // stand in the cells instead of the shared strings).
  lxw_workbook_options options{};
  options.constant_memory = grid.Rows() > kLargeGridRows ? LXW_TRUE : LXW_FALSE;
  options.use_zip64 = LXW_TRUE;
  std::unique_ptr<lxw_workbook, WorkbookCloser> workbook(workbook_new_opt(path.c_str(), &options));
  if (!workbook) {
    error = "无法建立文件: " + path;
    return false;
  }
  lxw_worksheet* sheet = workbook_add_worksheet(workbook.get(), SheetName(sheet_name).c_str());
  if (!sheet) {
    error = "无法建立工作表: " + sheet_name;
    return false;
  }
  Formats formats(workbook.get());
  std::vector<ColumnKind> kinds;
  for (int c = 0; c < grid.Cols(); ++c) kinds.push_back(KindOf(grid, c));
  for (int c = 0; c < grid.Cols(); ++c) {
    lxw_row_col_options options{};
    options.hidden = grid.IsColumnShown(c) ? 0 : 1;
    const double width = grid.ColWidth(c) > 0 ? grid.ColWidth(c) / 100.0 : 8.43;
    worksheet_set_column_opt(sheet, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c), width,
                             nullptr, &options);
  }
  lxw_row_t out_row = 0;
  for (int r = 0; r < grid.Rows(); ++r) {
    if (grid.RowHeight(r) == 0) continue;
    const bool header = r < grid.FixedRows();
    for (int c = 0; c < grid.Cols(); ++c) {
      const std::string& stored = grid.TextMatrix(r, c);
      const std::string shown = grid.ShownText(r, c);
      const int32_t back = grid.Cell(cell_property::kBackColor, r, c).ToLong();
      const int32_t fore = grid.Cell(cell_property::kForeColor, r, c).ToLong();
      const bool bold = header || grid.Cell(cell_property::kFontBold, r, c).ToDouble() != 0 ||
                        (grid.SubtotalGroup(r) == -1 && c >= grid.FixedCols() && back != kNoColor);
      const auto col = static_cast<lxw_col_t>(c);
      lxw_error written = LXW_NO_ERROR;
      const ColumnKind kind = kinds[static_cast<size_t>(c)];
      if (IsNumberCell(grid, r, c, kind)) {
        lxw_format* format = formats.Get(SheetNumberFormat(grid.ColFormat(c)), bold, back, fore);
        written = worksheet_write_number(sheet, out_row, col, mrvk::Val(stored), format);
      } else if (auto date = DateCell(grid, r, c, kind)) {
        lxw_datetime when{date->year(), date->month(), date->day(), 0, 0, 0};
        written = worksheet_write_datetime(sheet, out_row, col, &when,
                                           formats.Get("yyyy-mm-dd", bold, back, fore));
      } else if (!shown.empty() || back != kNoColor) {
        written = worksheet_write_string(sheet, out_row, col, shown.c_str(),
                                         formats.Get("", bold, back, fore));
      }
      if (written != LXW_NO_ERROR) {
        error = std::string("无法写入单元格: ") + lxw_strerror(written);
        return false;
      }
    }
    ++out_row;
  }
  if (grid.FixedRows() > 0)
    worksheet_freeze_panes(sheet, static_cast<lxw_row_t>(grid.FixedRows()), 0);
  const lxw_error closed = workbook_close(workbook.release());
  if (closed != LXW_NO_ERROR) {
    error = "无法写入文件 " + path + ": " + lxw_strerror(closed);
    return false;
  }
  return true;
}

bool ExportGridCsv(const GridControl& grid, const std::string& path, std::string& error) {
  std::string text = "\xEF\xBB\xBF";
  std::vector<ColumnKind> kinds;
  for (int c = 0; c < grid.Cols(); ++c) kinds.push_back(KindOf(grid, c));
  for (int r = 0; r < grid.Rows(); ++r) {
    if (grid.RowHeight(r) == 0) continue;
    bool first = true;
    for (int c = 0; c < grid.Cols(); ++c) {
      if (!grid.IsColumnShown(c)) continue;
      if (!first) text += ',';
      first = false;
      // A number goes as stored; its display format would make it a text ("1,200.50").
      // Everything else is a text as shown, never a formula.
      text += CsvField(IsNumberCell(grid, r, c, kinds[static_cast<size_t>(c)])
                           ? grid.TextMatrix(r, c)
                           : CsvText(grid.ShownText(r, c)));
    }
    text += "\r\n";
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out || !(out << text) || !out.flush()) {
    error = "无法写入文件: " + path;
    return false;
  }
  return true;
}

}  // namespace kvhost
