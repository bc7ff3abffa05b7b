// The VB Variant: the one value type that crosses the module/host boundary.
// Fields, grid cells, recordset fields, options and condition arrays all hold Variants.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace mrvk {

// A calendar date, kept as a day serial: days since 1899-12-30 (the VB zero date), so that
// date arithmetic is integer arithmetic and the serial orders as the date does.
class Date {
 public:
  constexpr Date() = default;
  static constexpr Date FromSerial(int32_t serial) {
    Date d;
    d.serial_ = serial;
    return d;
  }
  // The date of a year, month and day that exist in the proleptic Gregorian calendar.
  // Out-of-range parts are the caller's error: use IsValidDate first for typed input.
  static Date FromYmd(int year, int month, int day);

  int32_t serial() const { return serial_; }
  int year() const;
  int month() const;
  int day() const;
  // "yyyy-mm-dd"
  std::string ToText() const;

  friend constexpr bool operator==(Date a, Date b) { return a.serial_ == b.serial_; }
  friend constexpr auto operator<=>(Date a, Date b) { return a.serial_ <=> b.serial_; }

 private:
  int32_t serial_ = 0;
};

bool IsValidDate(int year, int month, int day);
int DaysInMonth(int year, int month);

class VariantArray;

// VB's Variant. Empty and Null are distinct: Empty is an unset value, Null is a database null.
class Variant {
 public:
  struct EmptyT {
    friend bool operator==(EmptyT, EmptyT) { return true; }
  };
  struct NullT {
    friend bool operator==(NullT, NullT) { return true; }
  };
  enum class Type { Empty, Null, Boolean, Long, Double, String, Date, Array };

  Variant() = default;
  Variant(NullT) : v_(NullT{}) {}
  Variant(bool b) : v_(b) {}
  Variant(int i) : v_(static_cast<int64_t>(i)) {}
  Variant(long i) : v_(static_cast<int64_t>(i)) {}
  Variant(long long i) : v_(static_cast<int64_t>(i)) {}
  Variant(double d) : v_(d) {}
  Variant(std::string s) : v_(std::move(s)) {}
  Variant(const char* s) : v_(std::string(s)) {}
  Variant(Date d) : v_(d) {}
  Variant(std::shared_ptr<VariantArray> a) : v_(std::move(a)) {}

  static Variant Null() { return Variant(NullT{}); }

  Type type() const { return static_cast<Type>(v_.index()); }
  bool IsEmpty() const { return type() == Type::Empty; }
  bool IsNull() const { return type() == Type::Null; }
  bool IsNumeric() const { return type() == Type::Long || type() == Type::Double; }
  bool IsString() const { return type() == Type::String; }
  bool IsArray() const { return type() == Type::Array; }

  // VB's string conversion as the `&` operator applies it: Empty and Null give "",
  // numbers the number-to-text rule, dates "yyyy-mm-dd", booleans "True"/"False".
  std::string ToString() const;
  // The value as a number: numbers as they are, texts through Val, dates as their serial,
  // Empty, Null and arrays 0.
  double ToDouble() const;
  // ToDouble rounded half to even and clamped to 32 bits, as VB's CLng.
  int32_t ToLong() const;

  const std::string& AsString() const { return std::get<std::string>(v_); }
  int64_t AsLong() const { return std::get<int64_t>(v_); }
  double AsDouble() const { return std::get<double>(v_); }
  Date AsDate() const { return std::get<Date>(v_); }
  bool AsBool() const { return std::get<bool>(v_); }
  const VariantArray& AsArray() const { return *std::get<std::shared_ptr<VariantArray>>(v_); }

  friend bool operator==(const Variant& a, const Variant& b);

 private:
  std::variant<EmptyT, NullT, bool, int64_t, double, std::string, Date,
               std::shared_ptr<VariantArray>>
      v_;
};

// A VB array of Variants with zero-based dimensions, as the host passes condition arrays.
class VariantArray {
 public:
  explicit VariantArray(std::vector<int> sizes);
  int Dimensions() const { return static_cast<int>(sizes_.size()); }
  // VB's UBound(array, dim) with dim counted from 1; -1 when the dimension does not exist.
  int UBound(int dim) const;
  Variant& at(std::initializer_list<int> index);
  const Variant& at(std::initializer_list<int> index) const;

 private:
  size_t Offset(std::initializer_list<int> index) const;
  std::vector<int> sizes_;
  std::vector<Variant> data_;
};

}  // namespace mrvk
