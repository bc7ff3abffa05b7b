// How grid cells show: a column's number format ("#,##0.00", "###.##", "0.00") applied to a
// cell's text on display only, and the width a header caption gives its column.
#pragma once

#include <string>
#include <string_view>

namespace kvhost {

// True when text is a plain decimal number: an optional "-", digits without a leading zero
// (a single "0" before the point is fine), then optionally a point and digits. "1234.50",
// "-0.5" and "13800138000" are; "001", "1,234", " 5", "1e5", "+5", ".5" and "" are not. Such a
// text keeps its meaning as a number (a code with leading zeros does not).
bool IsPlainNumber(std::string_view text);

// The text of a cell as a column with `format` shows it. A number format is made of the
// placeholders 0 (a digit that always shows) and # (a digit that shows when needed), at most
// one "." and "," in the integer part for thousands separators, with literal text before and
// after ("¥#,##0.00", "0.0%": a "%" multiplies by 100). It applies only to a plain number;
// any other text, and any format without a placeholder, shows the text as it is. Rounding is
// half away from zero on the decimal text itself, so "2.675" shows "2.68" under "0.00".
// A number never shows an empty integer part ("0.5" under "###.##"), and a point with no
// decimals behind it is dropped ("12" under "###.##").
std::string FormatCellText(const std::string& text, std::string_view format);

// The width a header caption gives its column, in grid units: 100 for each character and 200
// for each wide (CJK) character, blanks included ("编号    " is 800).
int CaptionWidth(std::string_view caption);

}  // namespace kvhost
