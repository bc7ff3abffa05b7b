// PDMYz: the parties in a list – owners of housing units under the owners' menu entry
// (function key 870004), clients (the tenants of contracts) under any other key.
#pragma once

#include <memory>

#include "mrvk/master/frm_yz.h"
#include "mrvk/master/list_master_sheet.h"

namespace mrvk {

class PDMYz : public ListMasterSheet {
 public:
  PDMYz();
  // The dialog, for the person's work while it is shown.
  FrmYz& Dialog() { return *form_; }

 private:
  std::string Word() const override { return word_; }
  void TakeProgID(int32_t progID) override;
  std::string LoadSql() const override;
  std::string LayoutName() const override;
  void ShowEntry(int32_t id) override;

  std::string word_ = "客户";
  int32_t type_ = 1;
  std::unique_ptr<FrmYz> form_;
};

std::unique_ptr<ModuleObject> NewPDMYz();

}  // namespace mrvk
