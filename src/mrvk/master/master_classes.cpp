// The master data family: buildings, estates, fee categories, owners and clients, the quick
// housing register, and the code pickers.
#include "mrvk/master/pdm_fy.h"
#include "mrvk/master/pdm_fykm.h"
#include "mrvk/master/pdm_ly.h"
#include "mrvk/master/pdm_wy.h"
#include "mrvk/master/pdm_yz.h"
#include "mrvk/master/sel_pdm.h"
#include "mrvk/master/sel_pdm_fy.h"
#include "mrvk/registry.h"

namespace mrvk {

void RegisterMasterClasses(ClassFactories& f) {
  f["PDMLy"] = [] { return NewPDMLy(); };
  f["PDMWy"] = [] { return NewPDMWy(); };
  f["selPdm"] = [] { return NewSelPdm(); };
  f["clsPdm"] = [] { return NewClsPdm(); };
  f["selPdmFy"] = [] { return NewSelPdmFy(); };
  f["clsFy"] = [] { return NewClsFy(); };
  f["PDMYz"] = [] { return NewPDMYz(); };
  f["PDMFykm"] = [] { return NewPDMFykm(); };
  f["PDMFy"] = [] { return NewPDMFy(); };
}

}  // namespace mrvk
