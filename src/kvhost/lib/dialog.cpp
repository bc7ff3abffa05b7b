#include "kvhost/lib/dialog.h"

#include <nlohmann/json.hpp>

namespace kvhost {

void Dialog::Show() {
  shown_ = true;
  if (Activate) Activate();
  if (shown_) mrvk::ShowModal(*this);
}

void Dialog::Close() {
  if (QueryUnload) {
    QueryUnload();
    return;
  }
  Hide();
}

std::string Dialog::Answer(const mrvk::Variant&) {
  Close();
  return "";
}

void Dialog::WriteState(nlohmann::json& out) const {
  out["name"] = name_;
  out["caption"] = Caption;
  out["controls"] = ControlsState(controls_);
}

}  // namespace kvhost
