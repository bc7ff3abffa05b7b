// PDMFykm: the fee categories (费用科目) in a list, the kinds of fee a fee receipt charges.
#pragma once

#include <memory>

#include "mrvk/master/frm_fykm.h"
#include "mrvk/master/list_master_sheet.h"

namespace mrvk {

class PDMFykm : public ListMasterSheet {
 public:
  PDMFykm();
  FrmFykm& Dialog() { return *form_; }

 private:
  std::string Word() const override { return "费用科目"; }
  std::string LoadSql() const override {
    return "select 费用编号,费用名称,计费方式,单价,费用ID from fwfykm order by 费用编号";
  }
  std::string LayoutName() const override { return ClassName(); }
  void ShowEntry(int32_t id) override { form_->py_Init(*context_, id, /*view_only=*/false); }

  std::unique_ptr<FrmFykm> form_;
};

std::unique_ptr<ModuleObject> NewPDMFykm();

}  // namespace mrvk
