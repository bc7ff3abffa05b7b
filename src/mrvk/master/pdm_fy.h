// PDMFy: the quick housing register, every housing unit in a list with the names of its
// estate, building and owner, entered and edited in a short dialog (FrmFy).
#pragma once

#include <memory>

#include "mrvk/master/frm_fy.h"
#include "mrvk/master/list_master_sheet.h"

namespace mrvk {

class PDMFy : public ListMasterSheet {
 public:
  PDMFy();
  FrmFy& Dialog() { return *form_; }

 private:
  std::string Word() const override { return "房源信息"; }
  std::string LoadSql() const override;
  std::string LayoutName() const override { return ClassName(); }
  void ShowEntry(int32_t id) override { form_->py_Init(*context_, id, /*view_only=*/false); }

  std::unique_ptr<FrmFy> form_;
};

std::unique_ptr<ModuleObject> NewPDMFy();

}  // namespace mrvk
