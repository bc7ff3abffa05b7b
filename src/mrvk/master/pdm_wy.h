// Estates (PDMWy): the table fwwy on a tree master sheet, built exactly like the buildings.
#pragma once

#include <memory>

#include "mrvk/master/tree_master_sheet.h"

namespace mrvk {

std::unique_ptr<ModuleObject> NewPDMWy();

}  // namespace mrvk
