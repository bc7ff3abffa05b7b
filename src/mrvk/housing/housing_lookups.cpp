#include "mrvk/housing/housing_lookups.h"

#include "mrvk/frame/vb.h"

namespace mrvk {

IHostPicker* LookupPicker(IHostContext& context, int32_t progID, HousingLookup lookup,
                          const char* dictionary_type) {
  const char* key = lookup == HousingLookup::kSalesman     ? "sel_pdmgy"
                    : lookup == HousingLookup::kDictionary ? "sel_pdmsjzd"
                                                           : "sel_id_j";
  IHostPicker* picker = context.Picker(key);
  if (!picker || !picker->Init(progID)) return nullptr;
  IHostPickerParameters& p = picker->Parameters();
  switch (lookup) {
    case HousingLookup::kEstate:
      p.Item("FieldName").Value = Variant("物业名称");
      p.Item("SQL").Value = Variant(" Select 物业ID,物业编号,物业名称 From fwwy WHERE 1=1");
      p.Item("Valid").Value = Variant(" 物业编号='@' or 物业名称='@'");
      p.Item("Order").Value = Variant(" 物业编号,物业名称");
      p.Item("MxCzID").Value = Variant("");
      break;
    case HousingLookup::kOwner:
      p.Item("FieldName").Value = Variant("业主名称");
      p.Item("SQL").Value = Variant(" Select 业主ID,业主编号,业主名称 From fwyz where 类型=0");
      p.Item("Valid").Value = Variant(" 业主编号='@' or 业主名称='@'");
      p.Item("Order").Value = Variant(" 业主编号,业主名称");
      p.Item("MxCzID").Value = Variant("");
      break;
    case HousingLookup::kDictionary:
      p.Item("Lx").Value = Variant(dictionary_type ? dictionary_type : "");
      break;
    case HousingLookup::kSalesman:
      break;
  }
  return picker;
}

bool PickFromList(IHostPicker* picker, std::string& text, Variant& value) {
  if (!picker) return false;
  std::string chosen_text;
  Variant chosen_value = value;
  if (!picker->Show(chosen_text, chosen_value)) return false;
  text = chosen_text;
  value = chosen_value;
  return true;
}

bool CheckTypedText(IHostPicker* picker, const std::string& typed_text, Variant& value,
                    std::string& text) {
  if (!picker) return false;
  // The field's own Text may come in as both the typed text and the result: keep a copy.
  const std::string typed = typed_text;
  Variant found_value;
  std::string found_text;
  picker->Validate("", "", "", typed, found_value, found_text);
  if (Val(found_value.ToString()) == 0) {
    value = Variant(int32_t{0});
    text = typed;
  } else {
    value = found_value;
    text = found_text;
  }
  return true;
}

}  // namespace mrvk
