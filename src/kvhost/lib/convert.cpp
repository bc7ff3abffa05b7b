#include "kvhost/lib/convert.h"

#include <cmath>

#include "mrvk/frame/vb.h"

namespace kvhost {

std::string Convert::ToText(const mrvk::Variant& v) { return v.ToString(); }

std::string Convert::ToString(const mrvk::Variant& v) { return v.ToString(); }

int32_t Convert::ToLong(const mrvk::Variant& v) { return v.ToLong(); }

mrvk::Variant Convert::ToNumber(const mrvk::Variant& v) {
  const double d = v.ToDouble();
  if (std::trunc(d) == d && std::fabs(d) < 9e15) return mrvk::Variant(static_cast<int64_t>(d));
  return mrvk::Variant(d);
}

double Convert::ToDouble(const mrvk::Variant& v, std::optional<int> digits) {
  const double d = v.ToDouble();
  if (!digits || *digits < 0 || *digits > 15) return d;
  const double scale = std::pow(10.0, *digits);
  // Round the scaled value after removing binary noise (2.675 is 2.67499999... in binary).
  const double scaled = std::stod(mrvk::NumberText(d * scale));
  return mrvk::RoundHalfEven(scaled) / scale;
}

mrvk::Date Convert::ToDate(const mrvk::Variant& v, const std::string&) {
  if (v.type() == mrvk::Variant::Type::Date) return v.AsDate();
  if (v.IsString()) {
    if (auto d = mrvk::ParseDate(v.AsString())) return *d;
  }
  return mrvk::NoDate();
}

std::vector<std::string> Convert::Split(const mrvk::Variant& text, const std::string& separator,
                                        std::optional<int> count) {
  const std::string s = text.ToString();
  std::vector<std::string> out;
  if (s.empty()) return out;
  if (separator.empty()) return {s};
  size_t start = 0;
  while (true) {
    if (count && static_cast<int>(out.size()) == *count - 1) {
      out.push_back(s.substr(start));
      break;
    }
    const size_t at = s.find(separator, start);
    if (at == std::string::npos) {
      out.push_back(s.substr(start));
      break;
    }
    out.push_back(s.substr(start, at - start));
    start = at + separator.size();
  }
  return out;
}

std::string Convert::Token(const mrvk::Variant& text, int index, const std::string& separator) {
  const std::vector<std::string> parts = Split(text, separator, std::nullopt);
  if (index < 0 || index >= static_cast<int>(parts.size())) return "";
  return parts[static_cast<size_t>(index)];
}

}  // namespace kvhost
