// Convert: the null-safe conversions of field and recordset values.
#pragma once

#include "mrvk/frame/host_contract.h"

namespace kvhost {

class Convert : public mrvk::IHostConvert {
 public:
  // Text columns for display: Null and Empty give "", numbers the number-to-text rule.
  std::string ToText(const mrvk::Variant& v) override;
  std::string ToString(const mrvk::Variant& v) override;
  // Whole number, rounded half to even; texts through Val; Null/Empty 0.
  int32_t ToLong(const mrvk::Variant& v) override;
  // A number (Long when whole, else Double); texts through Val; Null/Empty 0.
  mrvk::Variant ToNumber(const mrvk::Variant& v) override;
  // A double, rounded half to even to `digits` decimals when given; Null/Empty 0.
  double ToDouble(const mrvk::Variant& v, std::optional<int> digits) override;
  // A date from a date or a date text; Null, Empty and texts that are no date give the
  // host's null date (1900-01-01).
  mrvk::Date ToDate(const mrvk::Variant& v, const std::string& format) override;
  // VB Split: the pieces between separators, empty pieces kept; at most `count` pieces, the
  // last holding the rest. Null/Empty or "" give no pieces.
  std::vector<std::string> Split(const mrvk::Variant& text, const std::string& separator,
                                 std::optional<int> count) override;
  // The piece at zero-based `index` of Split; "" when there is none.
  std::string Token(const mrvk::Variant& text, int index, const std::string& separator) override;
};

}  // namespace kvhost
