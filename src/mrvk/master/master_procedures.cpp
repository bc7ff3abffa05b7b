#include "mrvk/master/master_procedures.h"

namespace mrvk {

void SetEditable(kvhost::ControlList& controls, bool flag) {
  for (kvhost::Control* c : controls) {
    const std::string& type = c->TypeName();
    if (type == "TextBox" || type == "kvTxt_S" || type == "ComboBox" || type == "CheckBox")
      c->Enabled = flag;
    else if (type == "TreeView" || type == "ListView")
      c->Enabled = !flag;
  }
}

std::string DeleteRow(IHostDatabase& db, const std::string& table, const std::string& key_column,
                      int32_t id) {
  db.CreateCommand("delete from " + table + " where " + key_column + "=" + std::to_string(id), 1)
      ->Execute();
  const std::string error = db.Error().Description();
  db.Release();
  return error;
}

}  // namespace mrvk
