// Sel_FY: the housing picker through which a contract, a receipt or a report's filter
// chooses a unit; the host hands it out under the key "sel_fy". Its Value is a 房源ID (as
// text), its Text the 房源编号. The list can be narrowed by estate, layout and rental state
// and searched through SearchBox1, which either moves to the first hit or (chkFilter) hides
// the rows without one. With the parameter New = 1 it lists only units with something free.
// The screen and its handling are the pickers' with a search box (SearchPicker).
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/search_picker.h"

namespace mrvk {

class Sel_FY : public SearchPicker {
 public:
  Sel_FY();

  std::string ClassName() const override { return "Sel_FY"; }
};

std::unique_ptr<ModuleObject> NewSel_FY();

}  // namespace mrvk
