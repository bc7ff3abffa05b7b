#include "mrvk/frame/vb.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace mrvk {

double Val(std::string_view text) {
  // VB skips blanks, tabs and line feeds wherever they stand, so gather the meaningful
  // characters first.
  std::string s;
  s.reserve(text.size());
  for (char c : text) {
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') s.push_back(c);
  }
  size_t i = 0;
  if (s.size() >= 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h' || s[1] == 'O' || s[1] == 'o')) {
    const int base = (s[1] == 'H' || s[1] == 'h') ? 16 : 8;
    int64_t v = 0;
    for (i = 2; i < s.size(); ++i) {
      const char c = s[i];
      int digit;
      if (c >= '0' && c <= '9')
        digit = c - '0';
      else if (base == 16 && c >= 'a' && c <= 'f')
        digit = c - 'a' + 10;
      else if (base == 16 && c >= 'A' && c <= 'F')
        digit = c - 'A' + 10;
      else
        break;
      if (digit >= base) break;
      v = v * base + digit;
      if (v > 0xFFFFFFFFLL) break;
    }
    return static_cast<double>(v);
  }
  std::string num;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) num.push_back(s[i++]);
  bool digits = false;
  while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
    num.push_back(s[i++]);
    digits = true;
  }
  if (i < s.size() && s[i] == '.') {
    num.push_back(s[i++]);
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
      num.push_back(s[i++]);
      digits = true;
    }
  }
  if (!digits) return 0;
  if (i < s.size() && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
    std::string exp = "e";
    size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) exp.push_back(s[j++]);
    bool exp_digits = false;
    while (j < s.size() && s[j] >= '0' && s[j] <= '9') {
      exp.push_back(s[j++]);
      exp_digits = true;
    }
    if (exp_digits) num += exp;
  }
  const double v = std::strtod(num.c_str(), nullptr);
  return std::isfinite(v) ? v : 0;
}

std::string Trim(std::string_view text) {
  size_t b = 0, e = text.size();
  while (b < e && text[b] == ' ') ++b;
  while (e > b && text[e - 1] == ' ') --e;
  return std::string(text.substr(b, e - b));
}

std::string UCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

std::string NumberText(double value) {
  if (value == 0 || !std::isfinite(value)) return "0";
  const double mag = std::fabs(value);
  char buf[64];
  if (mag >= 1e15 || mag < 1e-4) {
    // VB writes 1E+15, 1.5E-05: mantissa without trailing zeros, signed exponent of 2+ digits.
    std::snprintf(buf, sizeof buf, "%.14E", value);
    std::string s = buf;
    const size_t e = s.find('E');
    std::string mant = s.substr(0, e);
    std::string exp = s.substr(e + 1);
    if (mant.find('.') != std::string::npos) {
      while (mant.back() == '0') mant.pop_back();
      if (mant.back() == '.') mant.pop_back();
    }
    const char sign = exp[0];
    std::string digits = exp.substr(1);
    while (digits.size() > 2 && digits[0] == '0') digits.erase(0, 1);
    return mant + "E" + sign + digits;
  }
  std::snprintf(buf, sizeof buf, "%.15G", value);
  std::string s = buf;
  if (s.find('.') != std::string::npos && s.find('E') == std::string::npos) {
    while (s.back() == '0') s.pop_back();
    if (s.back() == '.') s.pop_back();
  }
  return s;
}

double RoundHalfEven(double value) {
  if (!std::isfinite(value)) return value;
  const double fl = std::floor(value);
  const double diff = value - fl;
  if (diff > 0.5) return fl + 1;
  if (diff < 0.5) return fl;
  return std::fmod(fl, 2.0) == 0 ? fl : fl + 1;
}

[[noreturn]] void RaiseDivisionByZero() {
  throw VbError(vb_error::kDivisionByZero, "Division by zero");
}

int64_t IntDiv(int64_t a, int64_t b) {
  if (b == 0) RaiseDivisionByZero();
  return a / b;
}

std::optional<Date> ParseDate(std::string_view text) {
  std::string t = Trim(text);
  int parts[3] = {0, 0, 0};
  int count = 0;
  size_t i = 0;
  char sep = 0;
  while (count < 3) {
    size_t start = i;
    int v = 0;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9' && i - start < 4) v = v * 10 + (t[i++] - '0');
    if (i == start) return std::nullopt;
    if (count == 0 && i - start != 4) return std::nullopt;
    if (count > 0 && i - start > 2) return std::nullopt;
    parts[count++] = v;
    if (count == 3) break;
    if (i >= t.size()) return std::nullopt;
    const char c = t[i];
    if (c != '-' && c != '/' && c != '.') return std::nullopt;
    if (sep && c != sep) return std::nullopt;
    sep = c;
    ++i;
  }
  // A time part may follow after a blank or a "T" (as databases write timestamps).
  if (i < t.size()) {
    if (t[i] != ' ' && t[i] != 'T') return std::nullopt;
    for (size_t j = i + 1; j < t.size(); ++j) {
      const char c = t[j];
      if (!((c >= '0' && c <= '9') || c == ':' || c == '.' || c == '+' || c == '-'))
        return std::nullopt;
    }
  }
  if (!IsValidDate(parts[0], parts[1], parts[2])) return std::nullopt;
  return Date::FromYmd(parts[0], parts[1], parts[2]);
}

Date AddMonths(Date date, int months) {
  const int total = date.year() * 12 + (date.month() - 1) + months;
  const int year = total / 12;
  const int month = total % 12 + 1;
  const int day = std::min(date.day(), DaysInMonth(year, month));
  return Date::FromYmd(year, month, day);
}

Date NoDate() { return Date::FromYmd(1900, 1, 1); }

namespace {
thread_local IUiPort* g_ui_port = nullptr;
}

IUiPort* CurrentUiPort() { return g_ui_port; }
void SetCurrentUiPort(IUiPort* port) { g_ui_port = port; }

int MsgBox(const std::string& prompt, int flags, const std::string& title) {
  if (IUiPort* port = CurrentUiPort()) return port->MsgBox(prompt, flags, title);
  const int buttons = flags & 7;
  if (buttons == msgbox::kYesNo || buttons == msgbox::kYesNoCancel) return msgbox::kNo;
  return buttons == msgbox::kOkCancel ? msgbox::kCancel : msgbox::kOk;
}

void ShowModal(IModalForm& form) {
  IUiPort* port = CurrentUiPort();
  if (!port) throw VbError(vb_error::kCannotShowModal, "不能显示对话框：" + form.Title());
  port->ShowModal(form);
}

std::string InputBox(const std::string& prompt, const std::string& title,
                     const std::string& default_text) {
  IUiPort* port = CurrentUiPort();
  if (!port) return "";
  return port->InputBox(prompt, title, default_text).value_or("");
}

}  // namespace mrvk
