#include "kvhost/lib/control.h"

#include <nlohmann/json.hpp>

namespace kvhost {

std::string Control::Apply(const Gesture& gesture) { return Unsupported(gesture); }

void Control::WriteState(nlohmann::json& out) const {
  out["type"] = type_name_;
  out["name"] = name_;
  if (index_ >= 0) out["index"] = index_;
  out["caption"] = Caption;
  out["enabled"] = Enabled;
  out["visible"] = Visible;
  out["locked"] = Locked;
  if (!ToolTipText.empty()) out["tooltip"] = ToolTipText;
  if (!Container.empty()) out["container"] = Container;
  WriteOwnState(out);
}

std::string Control::DisplayName() const {
  return index_ >= 0 ? name_ + "(" + std::to_string(index_) + ")" : name_;
}

void Control::WriteOwnState(nlohmann::json&) const {}

std::string Control::Unsupported(const Gesture& gesture) const {
  return DisplayName() + " (" + type_name_ + ") has no gesture \"" + gesture.kind + "\"";
}

std::string Control::RefusesInput(bool locked_counts) const {
  if (!Visible) return DisplayName() + " is hidden";
  if (!Enabled) return DisplayName() + " is disabled";
  if (locked_counts && Locked) return DisplayName() + " is locked";
  return "";
}

std::string CutToCharacters(const std::string& text, int limit) {
  int count = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) continue;  // continuation byte
    if (count++ == limit) return text.substr(0, i);
  }
  return text;
}

}  // namespace kvhost
