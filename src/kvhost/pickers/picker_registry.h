// The host's registry of pickers. IHostContext::Picker(key) gives the service of a key, made
// at its first use and shared by all screens of the context from then on: "selpdm",
// "selpdmfy", "sel_fy" and "sel_ht" lead to the module's picker classes, "sel_id_j",
// "sel_inner_j", "sel_pdmsjzd", "sel_pdmgy" and "selpdmkjkm" to the host's own. Besides
// them the registry holds the host's lists behind a field's PickerKey ("gy_wy", "gy_yz",
// "gy_sjzd_hx", "hp_xsy", ...): the code and name columns of the table the field's check
// reads, the chosen row giving the field's ValueColumn and DisplayColumn.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/kv_txt.h"
#include "mrvk/frame/picker_contract.h"

namespace kvhost {

class HostList;

// The table behind a field's list key.
struct FieldListDef {
  std::string key;
  std::string caption;
  std::string table;
  std::string code_column;
  std::string name_column;
  std::string filter;  // "" for all rows
};

class PickerRegistry {
 public:
  explicit PickerRegistry(mrvk::IHostContext& context);
  ~PickerRegistry();
  PickerRegistry(const PickerRegistry&) = delete;
  PickerRegistry& operator=(const PickerRegistry&) = delete;

  // The service of a key (without regard to case); null for a key the host does not know.
  mrvk::IHostPicker* Service(const std::string& key);
  // The keys of all services, in order.
  static const std::vector<std::string>& ServiceKeys();
  // The list behind a field's key (without regard to case); null for none.
  static const FieldListDef* FindFieldList(const std::string& key);

  // The default service of a field's picker request: the list behind its PickerKey (a field
  // list, or else a service of that key), shown modally. A choice goes to text and value;
  // a cancel leaves both as they were. A key with no list behind it, or value and display
  // columns that are no plain column names, are said in a message box.
  void ShowFieldPicker(KvTxt& field, std::string& text, mrvk::Variant& value);

  // The window of the field lists, for tests that look at what is offered; null before the
  // first field list was shown.
  HostList* FieldList() { return field_list_.get(); }

 private:
  mrvk::IHostContext& context_;
  std::map<std::string, std::unique_ptr<mrvk::IHostPicker>> services_;
  std::unique_ptr<HostList> field_list_;
};

}  // namespace kvhost
