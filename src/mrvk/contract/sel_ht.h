// Sel_HT: the contract picker through which a receipt or a report's filter chooses a
// contract; the host hands it out under the key "sel_ht". Its Value is a 合同ID (as text),
// its Text the 合同编号. It lists approved contracts only, one row per unit of a contract,
// with tenant, unit, estate and term; the list can be narrowed by estate, layout and
// contract state and searched through SearchBox1. With the parameter New = 1 (a contract
// chosen to take a receipt) it lists only contracts in force. The screen and its handling
// are the pickers' with a search box (SearchPicker).
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/search_picker.h"

namespace mrvk {

class Sel_HT : public SearchPicker {
 public:
  Sel_HT();

  std::string ClassName() const override { return "Sel_HT"; }
};

std::unique_ptr<ModuleObject> NewSel_HT();

}  // namespace mrvk
