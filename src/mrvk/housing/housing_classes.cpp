// The housing register family: the housing sheet with its rooms and the housing picker.
#include "mrvk/housing/fy_mx.h"
#include "mrvk/registry.h"

namespace mrvk {

void RegisterHousingClasses(ClassFactories& f) {
  f["FY_MX"] = [] { return NewFY_MX(); };
}

}  // namespace mrvk
