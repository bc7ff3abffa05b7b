// FrmFykm: the entry dialog of a fee category.
#pragma once

#include "mrvk/master/entry_dialog.h"

namespace mrvk {

class FrmFykm : public EntryDialog {
 public:
  FrmFykm();

  // Shows the fee category with this ID (0 for a new one) until the dialog closes.
  void py_Init(IHostContext& context, int32_t id, bool view_only);

 private:
  void UpdateForm(Recordset& rs) override;
  std::string UpdateSql(int32_t id) override;
  std::string InsertSql(int32_t id) override;
  // The price as it is saved: the number the field holds, 0 when empty.
  std::string Price();
};

}  // namespace mrvk
