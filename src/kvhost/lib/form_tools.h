// FormTools: the form helper a sheet creates in Init, here for moving the input focus.
#pragma once

#include "kvhost/lib/control_list.h"

namespace kvhost {

class FormTools {
 public:
  explicit FormTools(ControlList& screen) : screen_(screen) {}
  // Moves the input focus to a control of the screen.
  void SetFocus(Control& control) { screen_.SetFocus(&control); }

 private:
  ControlList& screen_;
};

}  // namespace kvhost
