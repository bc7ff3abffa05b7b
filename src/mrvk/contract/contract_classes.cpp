// The rental contract family: the contract sheets and the contract picker.
#include "mrvk/registry.h"

namespace mrvk {

void RegisterContractClasses([[maybe_unused]] ClassFactories& f) {}

}  // namespace mrvk
