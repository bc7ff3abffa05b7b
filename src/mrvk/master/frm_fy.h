// FrmFy: the entry dialog of the quick housing register, twelve fields of a housing unit;
// estate, owner and building are looked up to their IDs, facing, layout and structure to
// dictionary names, and the rental state is a closed list.
#pragma once

#include "mrvk/master/entry_dialog.h"

namespace mrvk {

class FrmFy : public EntryDialog {
 public:
  FrmFy();

  // Shows the housing unit with this ID (0 for a new one) until the dialog closes.
  void py_Init(IHostContext& context, int32_t id, bool view_only);

 private:
  // Binds kvTxt(index) to a lookup: the button opens the picker of the key, a typed text is
  // checked by the statement.
  void Bind(int index, const std::string& value_column, const std::string& display_column,
            const std::string& picker_key, const std::string& validate_sql);
  void UpdateForm(Recordset& rs) override;
  std::string UpdateSql(int32_t id) override;
  std::string InsertSql(int32_t id) override;
  // The ID a bound field holds, as a number in SQL.
  std::string IdOf(int index);
  // The area as it is saved: the number the field holds, 0 when empty.
  std::string Area();
};

}  // namespace mrvk
