// The housing register family: the housing sheets (with rooms, and for units let whole), the
// housing list and the housing picker.
#include "mrvk/housing/fwfy_tools.h"
#include "mrvk/housing/fy_list.h"
#include "mrvk/housing/fy_mx.h"
#include "mrvk/housing/sel_fy.h"
#include "mrvk/registry.h"

namespace mrvk {

void RegisterHousingClasses(ClassFactories& f) {
  f["FY_MX"] = [] { return NewFY_MX(); };
  f["FY_MX_old"] = [] { return NewFY_MX_old(); };
  f["FY_List"] = [] { return NewFY_List(); };
  f["Sel_FY"] = [] { return NewSel_FY(); };
  f["cFwFy_finish"] = [] { return NewcFwFy_finish(); };
  f["cFwFy_unfinish"] = [] { return NewcFwFy_unfinish(); };
}

}  // namespace mrvk
