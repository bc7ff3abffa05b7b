// The lookups behind the fields of the housing screens: an estate by code or name, an owner,
// a salesman, an entry of a dictionary type. Each is the host's picker of its key with the
// parameters the lookup needs, and a field uses it in two ways: a choice from the list, and
// a check of what was typed.
#pragma once

#include <cstdint>
#include <string>

#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/picker_contract.h"

namespace mrvk {

enum class HousingLookup { kEstate, kOwner, kSalesman, kDictionary };

// The picker of the lookup with its parameters set (`dictionary_type` names the type of a
// kDictionary lookup); null when the picker cannot be made (the host has said why).
IHostPicker* LookupPicker(IHostContext& context, int32_t progID, HousingLookup lookup,
                          const char* dictionary_type = nullptr);

// Shows the picker's list. True when a row was chosen: text and value then hold it; a
// cancel leaves them as they were. False without a picker.
bool PickFromList(IHostPicker* picker, std::string& text, Variant& value);

// Checks a typed text with the picker. A row found gives its value and text; none gives
// value 0 and keeps the typed text (the save may create what it names). False without a
// picker: value and text are left alone.
bool CheckTypedText(IHostPicker* picker, const std::string& typed, Variant& value,
                    std::string& text);

}  // namespace mrvk
