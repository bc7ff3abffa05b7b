// The rental contract family: the contract sheets, the contract picker and the status tools.
#include "mrvk/contract/fwhd_tools.h"
#include "mrvk/contract/sel_ht.h"
#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "mrvk/registry.h"

namespace mrvk {

void RegisterContractClasses(ClassFactories& f) {
  f["Sel_HT"] = [] { return NewSel_HT(); };
  f["zfHd_2"] = [] { return NewzfHd_2(); };
  f["cFwHd_finish"] = [] { return NewcFwHd_finish(); };
  f["cFwHd_unfinish"] = [] { return NewcFwHd_unfinish(); };
}

}  // namespace mrvk
