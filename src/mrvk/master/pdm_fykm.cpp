#include "mrvk/master/pdm_fykm.h"

namespace mrvk {

PDMFykm::PDMFykm()
    : ListMasterSheet({"PDMFykm",
                       "行号|编号    |名称        |计费方式      |单价      |费用ID",
                       "fwfykm",
                       "费用ID",
                       {"费用编号", "费用名称", "计费方式", "单价", "费用ID"},
                       "fwjsfy"}),
      form_(std::make_unique<FrmFykm>()) {
  HearDialog(*form_);
}

std::unique_ptr<ModuleObject> NewPDMFykm() { return std::make_unique<PDMFykm>(); }

}  // namespace mrvk
