// The rental contract family: the contract sheets and the contract picker.
#include "mrvk/contract/sel_ht.h"
#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "mrvk/registry.h"

namespace mrvk {

void RegisterContractClasses(ClassFactories& f) {
  f["Sel_HT"] = [] { return NewSel_HT(); };
  f["zfHd_2"] = [] { return NewzfHd_2(); };
}

}  // namespace mrvk
