// A row of buttons on a screen ("Toolbar"), as the sheets switch their pages with it:
// buttons numbered from 1, each with a caption, a tool tip and a pressed state (the page
// shown). A button without a caption is a separator. click (row = the button's number):
// ButtonClick(number); a separator or a number out of range is refused.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kvhost/lib/control.h"

namespace kvhost {

class Toolbar : public Control {
 public:
  struct Button {
    std::string Caption;
    std::string ToolTipText;
    bool Pressed = false;
  };

  Toolbar(std::string name, int index = -1) : Control("Toolbar", std::move(name), index) {}

  // Adds a button at the end; its number.
  int AddButton(const std::string& caption, const std::string& tool_tip);
  // Presses button `number` and releases the others.
  void SetPressed(int number);
  const std::vector<Button>& Buttons() const { return buttons_; }

  std::function<void(int number)> ButtonClick;

  std::string Apply(const Gesture& gesture) override;

 protected:
  // "buttons": [{"caption", "tooltip", "pressed"}] in order (number 1 first).
  void WriteOwnState(nlohmann::json& out) const override;

 private:
  std::vector<Button> buttons_;
};

}  // namespace kvhost
