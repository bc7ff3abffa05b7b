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

const std::vector<std::string>& SearchOperators(SearchType type) {
  static const std::vector<std::string> kText = {"=", "<>", ">", ">=", "<", "<=", "like"};
  static const std::vector<std::string> kOthers(kText.begin(), kText.end() - 1);
  return type == SearchType::kText ? kText : kOthers;
}

std::optional<std::string> ConditionText(const Variant& conditions, int plane, bool jet,
                                         const std::vector<SearchField>& fields,
                                         std::string& refusal) {
  refusal.clear();
  if (conditions.IsEmpty() || conditions.IsNull()) return std::nullopt;
  const VariantArray* a = conditions.IsArray() ? &conditions.AsArray() : nullptr;
  if (!a || a->Dimensions() != 3 || a->UBound(1) < 1 || a->UBound(3) < 2 || plane < 0 ||
      plane > 1) {
    refusal = "查找条件的格式不对：应为（值，字段，运算符）的条件行";
    return std::nullopt;
  }
  std::string text;
  for (int row = 0; row <= a->UBound(2); ++row) {
    // Every row must name a declared field and a known operator, also one without a value;
    // only a row that is blank throughout (padding of the other plane) is passed over.
    const std::string caption = a->at({plane, row, 1}).ToString();
    const std::string op = Trim(a->at({plane, row, 2}).ToString());
    const std::string value = Trim(a->at({plane, row, 0}).ToString());
    if (caption.empty() && op.empty() && value.empty()) continue;
    auto field = std::find_if(fields.begin(), fields.end(),
                              [&](const SearchField& f) { return f.caption == caption; });
    if (field == fields.end()) {
      refusal = "查找条件中的字段“" + caption + "”不在可查找的字段中";
      return std::nullopt;
    }
    const std::vector<std::string>& ops = SearchOperators(field->type);
    if (std::find(ops.begin(), ops.end(), op) == ops.end()) {
      std::string offered;
      for (const std::string& o : ops) offered += " " + o;
      refusal = "查找条件中字段“" + caption + "”的运算符“" + op + "”不可用，可用的有" + offered;
      return std::nullopt;
    }
    const bool like = op == "like";
    if (value.empty()) continue;
    if (like) {
      text += " and " + field->column + " like " + SqlQuoted("%" + value + "%");
      continue;
    }
    const std::optional<std::string> literal = SqlValue(value, field->type, jet);
    if (!literal) {
      refusal = "字段“" + caption + "”的值“" + value + "”不是日期";
      return std::nullopt;
    }
    text += " and " + field->column + op + *literal;
  }
  return text.size() >= 4 ? text.substr(4) : std::string();
}

}  // namespace mrvk
