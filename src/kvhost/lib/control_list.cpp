#include "kvhost/lib/control_list.h"

#include <strings.h>

#include <nlohmann/json.hpp>

namespace kvhost {

Control* ControlList::Find(const std::string& name, int index) const {
  for (Control* c : controls_) {
    if (c->Index() == index && strcasecmp(c->Name().c_str(), name.c_str()) == 0) return c;
  }
  return nullptr;
}

nlohmann::json ControlsState(const ControlList& list) {
  nlohmann::json out = nlohmann::json::array();
  for (const Control* c : list) {
    nlohmann::json one = nlohmann::json::object();
    c->WriteState(one);
    if (c == list.Focused()) one["focus"] = true;
    out.push_back(std::move(one));
  }
  return out;
}

}  // namespace kvhost
