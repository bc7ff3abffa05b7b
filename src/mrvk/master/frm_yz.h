// FrmYz: the entry dialog of a party, an owner (类型 0) or a client (类型 1).
#pragma once

#include "mrvk/master/entry_dialog.h"

namespace mrvk {

class FrmYz : public EntryDialog {
 public:
  FrmYz();

  // Shows the party with this ID (0 for a new one) of the kind 类型 until the dialog closes.
  void py_Init(IHostContext& context, int32_t type, int32_t id, bool view_only);

  kvhost::ControlArray<kvhost::OptionButton> optXB{"optXB"};

 private:
  void UpdateForm(Recordset& rs) override;
  std::string UpdateSql(int32_t id) override;
  std::string InsertSql(int32_t id) override;
  // "男" when optXB(0) is set, else "女".
  std::string Sex() const { return optXB[0].Value ? "男" : "女"; }

  int32_t type_ = 0;
};

}  // namespace mrvk
