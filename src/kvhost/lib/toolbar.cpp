#include "kvhost/lib/toolbar.h"

#include <nlohmann/json.hpp>

namespace kvhost {

int Toolbar::AddButton(const std::string& caption, const std::string& tool_tip) {
  buttons_.push_back({caption, tool_tip, /*Pressed=*/false});
  return static_cast<int>(buttons_.size());
}

void Toolbar::SetPressed(int number) {
  for (size_t i = 0; i < buttons_.size(); ++i)
    buttons_[i].Pressed = static_cast<int>(i) + 1 == number;
}

std::string Toolbar::Apply(const Gesture& g) {
  if (g.kind != "click") return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
  if (g.row < 1 || g.row > static_cast<int>(buttons_.size()) ||
      buttons_[static_cast<size_t>(g.row) - 1].Caption.empty())
    return DisplayName() + " has no button " + std::to_string(g.row);
  if (ButtonClick) ButtonClick(g.row);
  return "";
}

void Toolbar::WriteOwnState(nlohmann::json& out) const {
  nlohmann::json buttons = nlohmann::json::array();
  for (const Button& b : buttons_)
    buttons.push_back({{"caption", b.Caption}, {"tooltip", b.ToolTipText}, {"pressed", b.Pressed}});
  out["buttons"] = std::move(buttons);
}

}  // namespace kvhost
