#include "kvhost/lib/display_format.h"

#include <algorithm>
#include <cstdint>

namespace kvhost {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The parts of a number format: literal text around the placeholders, the digits the
// integer part always shows, whether it groups thousands, and the decimals it shows always
// (zeros) and at most (zeros and hashes).
struct NumberFormat {
  std::string prefix;
  std::string suffix;
  int min_int_digits = 0;
  bool thousands = false;
  int min_decimals = 0;
  int max_decimals = 0;
  bool percent = false;
};

// Splits format into its parts; false when it has no digit placeholder.
bool ParseFormat(std::string_view format, NumberFormat& f) {
  const size_t first = format.find_first_of("0#.");
  const size_t last = format.find_last_of("0#");
  if (first == std::string_view::npos || last == std::string_view::npos) return false;
  f.prefix = std::string(format.substr(0, first));
  f.suffix = std::string(format.substr(last + 1));
  const std::string_view body = format.substr(first, last + 1 - first);
  const size_t dot = body.find('.');
  const std::string_view int_part = body.substr(0, dot);
  f.min_int_digits = static_cast<int>(std::count(int_part.begin(), int_part.end(), '0'));
  f.thousands = int_part.find(',') != std::string_view::npos;
  if (dot != std::string_view::npos) {
    const std::string_view dec_part = body.substr(dot + 1);
    f.min_decimals = static_cast<int>(std::count(dec_part.begin(), dec_part.end(), '0'));
    f.max_decimals =
        f.min_decimals + static_cast<int>(std::count(dec_part.begin(), dec_part.end(), '#'));
  }
  f.percent = f.prefix.find('%') != std::string::npos || f.suffix.find('%') != std::string::npos;
  return true;
}

// Adds one to a string of decimal digits; "99" becomes "100".
void Increment(std::string& digits) {
  for (size_t i = digits.size(); i-- > 0;) {
    if (digits[i] != '9') {
      ++digits[i];
      return;
    }
    digits[i] = '0';
  }
  digits.insert(digits.begin(), '1');
}

std::string GroupThousands(const std::string& digits) {
  std::string out;
  const size_t n = digits.size();
  for (size_t i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out.push_back(',');
    out.push_back(digits[i]);
  }
  return out;
}

bool IsWide(uint32_t cp) {
  return (cp >= 0x1100 && cp <= 0x115F) || (cp >= 0x2E80 && cp <= 0xA4CF) ||
         (cp >= 0xAC00 && cp <= 0xD7A3) || (cp >= 0xF900 && cp <= 0xFAFF) ||
         (cp >= 0xFE30 && cp <= 0xFE4F) || (cp >= 0xFF00 && cp <= 0xFF60) ||
         (cp >= 0xFFE0 && cp <= 0xFFE6) || (cp >= 0x20000 && cp <= 0x3FFFD);
}

}  // namespace

bool IsPlainNumber(std::string_view text) {
  size_t i = 0;
  if (i < text.size() && text[i] == '-') ++i;
  const size_t int_start = i;
  while (i < text.size() && IsDigit(text[i])) ++i;
  const size_t int_digits = i - int_start;
  if (int_digits == 0) return false;
  if (int_digits > 1 && text[int_start] == '0') return false;
  if (i == text.size()) return true;
  if (text[i] != '.') return false;
  ++i;
  const size_t dec_start = i;
  while (i < text.size() && IsDigit(text[i])) ++i;
  return i > dec_start && i == text.size();
}

std::string FormatCellText(const std::string& text, std::string_view format) {
  NumberFormat f;
  if (format.empty() || !IsPlainNumber(text) || !ParseFormat(format, f)) return text;
  const bool negative = text[0] == '-';
  const std::string_view number = std::string_view(text).substr(negative ? 1 : 0);
  const size_t dot = number.find('.');
  std::string int_digits(number.substr(0, dot));
  std::string dec_digits(dot == std::string_view::npos ? "" : number.substr(dot + 1));
  if (f.percent) {
    // Multiplying by 100 moves the point two places to the right.
    dec_digits.append(dec_digits.size() < 2 ? 2 - dec_digits.size() : 0, '0');
    int_digits += dec_digits.substr(0, 2);
    dec_digits.erase(0, 2);
  }
  // Round half away from zero to the most decimals the format shows.
  const size_t keep = static_cast<size_t>(f.max_decimals);
  if (dec_digits.size() > keep) {
    const bool up = dec_digits[keep] >= '5';
    dec_digits.resize(keep);
    if (up) {
      std::string all = int_digits + dec_digits;
      Increment(all);
      int_digits = all.substr(0, all.size() - keep);
      dec_digits = all.substr(all.size() - keep);
    }
  }
  dec_digits.append(static_cast<size_t>(f.min_decimals) > dec_digits.size()
                        ? static_cast<size_t>(f.min_decimals) - dec_digits.size()
                        : 0,
                    '0');
  while (dec_digits.size() > static_cast<size_t>(f.min_decimals) && dec_digits.back() == '0')
    dec_digits.pop_back();
  const size_t nonzero = int_digits.find_first_not_of('0');
  int_digits = nonzero == std::string::npos ? "" : int_digits.substr(nonzero);
  if (int_digits.size() < static_cast<size_t>(std::max(f.min_int_digits, 1)))
    int_digits.insert(0, static_cast<size_t>(std::max(f.min_int_digits, 1)) - int_digits.size(),
                      '0');
  const bool zero = int_digits.find_first_not_of('0') == std::string::npos &&
                    dec_digits.find_first_not_of('0') == std::string::npos;
  std::string out = negative && !zero ? "-" : "";
  out += f.prefix;
  out += f.thousands ? GroupThousands(int_digits) : int_digits;
  if (!dec_digits.empty()) out += "." + dec_digits;
  out += f.suffix;
  return out;
}

int CaptionWidth(std::string_view caption) {
  int width = 0;
  for (size_t i = 0; i < caption.size();) {
    const auto lead = static_cast<unsigned char>(caption[i]);
    const size_t len = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    uint32_t cp = len == 1 ? lead : len == 2 ? lead & 0x1F : len == 3 ? lead & 0x0F : lead & 0x07;
    for (size_t k = 1; k < len && i + k < caption.size(); ++k)
      cp = (cp << 6) | (static_cast<unsigned char>(caption[i + k]) & 0x3F);
    width += IsWide(cp) ? 200 : 100;
    i += len;
  }
  return width;
}

}  // namespace kvhost
