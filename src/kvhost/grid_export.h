// Export of any grid of a screen to a spreadsheet (XLSX) or to CSV, as the person sees it:
// the fixed rows as the header, the data and subtotal rows with their displayed captions,
// filtered-out rows (height 0) left out.
//
// A column is written by the type of its data (GridControl::ColValueType): a number column's
// plain numbers (display_format.h) as numbers, a date column's dates as dates, everything
// else as text, so an ID number, a phone number or a code with leading zeros keeps every
// digit. A column of no known type holds numbers when it shows them with a number format.
//
// XLSX: every column is written; hidden columns (hidden or width 0) stay hidden in the sheet.
// Numbers take the column's display format as their number format, dates "yyyy-mm-dd";
// header cells are bold, subtotal and total rows keep their colours and the header rows are
// frozen. Widths follow the grid's (100 grid units to a character). A grid of more than
// 20,000 rows is written row by row with its texts inline, so an export never holds a second
// copy of a large grid in memory.
//
// CSV: UTF-8 with a byte order mark, "," between fields, CRLF line ends, quotes where a field
// needs them; hidden columns are left out; numbers are written as they are stored (no
// thousands separators), so a spreadsheet reads them as numbers; a text that a spreadsheet
// would take for a formula (it begins with "=", "+", "-", "@", a tab or a carriage return)
// gets a leading "'"; masked cells print "***".
#pragma once

#include <string>

#include "kvhost/lib/grid_control.h"

namespace kvhost {

// False with the reason in error when the file cannot be written.
bool ExportGridXlsx(const GridControl& grid, const std::string& path, const std::string& sheet_name,
                    std::string& error);
bool ExportGridCsv(const GridControl& grid, const std::string& path, std::string& error);

}  // namespace kvhost
