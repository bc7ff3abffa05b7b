// Buildings (PDMLy): the table fwly on a tree master sheet.
#pragma once

#include <memory>

#include "mrvk/master/tree_master_sheet.h"

namespace mrvk {

std::unique_ptr<ModuleObject> NewPDMLy();

}  // namespace mrvk
