// The rental contract family: the contract sheets and the contract picker.
#include "mrvk/contract/sel_ht.h"
#include "mrvk/registry.h"

namespace mrvk {

void RegisterContractClasses(ClassFactories& f) {
  f["Sel_HT"] = [] { return NewSel_HT(); };
}

}  // namespace mrvk
