#include "mrvk/frame/variant.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>

#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

// Days from 1970-01-01 of a civil date (H. Hinnant's algorithm), and back.
constexpr int32_t kSerialOf1970 = 25569;  // 1970-01-01 counted from 1899-12-30

int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t yy = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yy + (m <= 2));
}

}  // namespace

bool IsValidDate(int year, int month, int day) {
  return year >= 1 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
         day <= DaysInMonth(year, month);
}

int DaysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

Date Date::FromYmd(int year, int month, int day) {
  return FromSerial(static_cast<int32_t>(
      DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) +
      kSerialOf1970));
}

int Date::year() const {
  int y, m, d;
  CivilFromDays(serial_ - kSerialOf1970, y, m, d);
  return y;
}
int Date::month() const {
  int y, m, d;
  CivilFromDays(serial_ - kSerialOf1970, y, m, d);
  return m;
}
int Date::day() const {
  int y, m, d;
  CivilFromDays(serial_ - kSerialOf1970, y, m, d);
  return d;
}

std::string Date::ToText() const {
  int y, m, d;
  CivilFromDays(serial_ - kSerialOf1970, y, m, d);
  char buf[10] = {static_cast<char>('0' + y / 1000 % 10),
                  static_cast<char>('0' + y / 100 % 10),
                  static_cast<char>('0' + y / 10 % 10),
                  static_cast<char>('0' + y % 10),
                  '-',
                  static_cast<char>('0' + m / 10),
                  static_cast<char>('0' + m % 10),
                  '-',
                  static_cast<char>('0' + d / 10),
                  static_cast<char>('0' + d % 10)};
  return std::string(buf, sizeof buf);
}

std::string Variant::ToString() const {
  switch (type()) {
    case Type::Empty:
    case Type::Null:
    case Type::Array:
      return "";
    case Type::Boolean:
      return AsBool() ? "True" : "False";
    case Type::Long:
      return std::to_string(AsLong());
    case Type::Double:
      return NumberText(AsDouble());
    case Type::String:
      return AsString();
    case Type::Date:
      return AsDate().ToText();
  }
  return "";
}

double Variant::ToDouble() const {
  switch (type()) {
    case Type::Boolean:
      return AsBool() ? -1 : 0;
    case Type::Long:
      return static_cast<double>(AsLong());
    case Type::Double:
      return AsDouble();
    case Type::String:
      return Val(AsString());
    case Type::Date:
      return AsDate().serial();
    default:
      return 0;
  }
}

int32_t Variant::ToLong() const {
  const double r = RoundHalfEven(ToDouble());
  if (!(r >= std::numeric_limits<int32_t>::min())) return std::numeric_limits<int32_t>::min();
  if (r > std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(r);
}

bool operator==(const Variant& a, const Variant& b) {
  if (a.IsNumeric() && b.IsNumeric()) return a.ToDouble() == b.ToDouble();
  if (a.type() != b.type()) return false;
  if (a.IsArray()) return &a.AsArray() == &b.AsArray();
  return a.v_ == b.v_;
}

VariantArray::VariantArray(std::vector<int> sizes) : sizes_(std::move(sizes)) {
  size_t n = 1;
  for (int s : sizes_) n *= static_cast<size_t>(s < 0 ? 0 : s);
  data_.resize(n);
}

int VariantArray::UBound(int dim) const {
  if (dim < 1 || dim > Dimensions()) return -1;
  return sizes_[static_cast<size_t>(dim - 1)] - 1;
}

size_t VariantArray::Offset(std::initializer_list<int> index) const {
  // VB's "Subscript out of range", which the procedures' handlers catch.
  if (index.size() != sizes_.size())
    throw VbError(vb_error::kSubscriptOutOfRange, "Subscript out of range");
  size_t off = 0;
  size_t k = 0;
  for (int i : index) {
    if (i < 0 || i >= sizes_[k])
      throw VbError(vb_error::kSubscriptOutOfRange, "Subscript out of range");
    off = off * static_cast<size_t>(sizes_[k]) + static_cast<size_t>(i);
    ++k;
  }
  return off;
}

Variant& VariantArray::at(std::initializer_list<int> index) { return data_[Offset(index)]; }
const Variant& VariantArray::at(std::initializer_list<int> index) const {
  return data_[Offset(index)];
}

}  // namespace mrvk
