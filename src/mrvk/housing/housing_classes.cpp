// The housing register family: the housing sheet with its rooms and the housing picker.
#include "mrvk/registry.h"

namespace mrvk {

void RegisterHousingClasses(ClassFactories& /*f*/) {}

}  // namespace mrvk
