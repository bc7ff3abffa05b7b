#include "mrvk/frame/host_contract.h"

#include <algorithm>
#include <cctype>

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

std::string KeyOf(const std::string& key) {
  std::string k = key;
  std::transform(k.begin(), k.end(), k.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return k;
}

}  // namespace

void IParameters::Add(const std::string& key, Variant value) {
  entries_[KeyOf(key)] = IParameter{std::move(value)};
}

bool IParameters::Exists(const std::string& key) const { return entries_.count(KeyOf(key)) > 0; }

IParameter IParameters::Item(const std::string& key) const {
  auto it = entries_.find(KeyOf(key));
  return it == entries_.end() ? IParameter{} : it->second;
}

std::optional<std::string> ConditionText(const Variant& conditions, int plane, bool jet) {
  if (!conditions.IsArray()) return std::nullopt;
  const VariantArray& a = conditions.AsArray();
  if (a.Dimensions() != 3 || a.UBound(1) < plane || a.UBound(3) < 1) return std::nullopt;
  std::string text;
  for (int row = 0; row <= a.UBound(2); ++row) {
    const std::string value = Trim(a.at({plane, row, 0}).ToString());
    if (value.empty()) continue;
    const std::string field = a.at({plane, row, 1}).ToString();
    const std::string trimmed_field = Trim(field);
    std::string open = "'", close = "'";
    if (trimmed_field.size() >= 4 &&
        trimmed_field.compare(trimmed_field.size() - 4, 4, "like") == 0) {
      open = " '%";
      close = "%' ";
    } else if (jet && a.UBound(3) >= 2 && a.UBound(1) >= 1 && a.at({1, row, 2}).ToDouble() == 7) {
      // The data type is read from the find plane, also for Filter.
      open = close = "#";
    }
    // A typed value never changes the statement: quotes in it are doubled.
    text += " and " + field + open + SqlText(value) + close;
  }
  return text.size() >= 4 ? text.substr(4) : std::string();
}

}  // namespace mrvk
