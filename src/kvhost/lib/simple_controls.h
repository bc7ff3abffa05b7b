// The plain controls of the screens: labels, text boxes, combo boxes, check boxes, option
// buttons, command buttons, and the frames and pages that group controls. Each raises the
// events a person's gesture raises, through the handlers its screen wires.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kvhost/lib/control.h"

namespace kvhost {

// A caption on the screen ("Label"); takes no gestures.
class Label : public Control {
 public:
  Label(std::string name, int index = -1) : Control("Label", std::move(name), index) {}
};

// A frame or a page ("Frame", "PictureBox"): controls name it as their Container.
class Frame : public Control {
 public:
  Frame(std::string name, int index = -1, std::string type_name = "Frame")
      : Control(std::move(type_name), std::move(name), index) {}
};

// A text box ("TextBox"). type: Text = text, then Change; leave: LostFocus; keydown (row =
// the key code, col = the shift state, 0 when not given): KeyDown.
class TextBox : public Control {
 public:
  TextBox(std::string name, int index = -1) : Control("TextBox", std::move(name), index) {}
  std::string Text;
  int MaxLength = 0;  // 0: no limit; longer typed text is cut, in characters
  bool MultiLine = false;
  std::function<void()> Change;
  std::function<void()> LostFocus;
  std::function<void(int key_code, int shift)> KeyDown;
  std::string Apply(const Gesture& gesture) override;

 protected:
  void WriteOwnState(nlohmann::json& out) const override;
};

// A drop-down list ("ComboBox"). pick with a text of the list: Text set, then Click.
class ComboBox : public Control {
 public:
  ComboBox(std::string name, int index = -1) : Control("ComboBox", std::move(name), index) {}
  std::string Text;
  std::vector<std::string> List;
  std::function<void()> Click;
  std::string Apply(const Gesture& gesture) override;

 protected:
  void WriteOwnState(nlohmann::json& out) const override;
};

// A check box ("CheckBox"), Value 0 or 1. toggle: Value flips, then Click. A program's own
// write to Value raises nothing.
class CheckBox : public Control {
 public:
  CheckBox(std::string name, int index = -1) : Control("CheckBox", std::move(name), index) {}
  int Value = 0;
  std::function<void()> Click;
  std::string Apply(const Gesture& gesture) override;

 protected:
  void WriteOwnState(nlohmann::json& out) const override;
};

// An option button ("OptionButton"). click (or toggle) selects it and clears the other
// buttons of its group, then Click. The group is the other buttons registered by SetGroup:
// in VB the buttons of one container.
class OptionButton : public Control {
 public:
  OptionButton(std::string name, int index = -1)
      : Control("OptionButton", std::move(name), index) {}
  bool Value = false;
  std::function<void()> Click;
  // Makes these buttons one group, where selecting one clears the others (also when the
  // program sets one through Select).
  static void SetGroup(const std::vector<OptionButton*>& group);
  // Selects this button and clears the others of its group; raises nothing.
  void Select();
  std::string Apply(const Gesture& gesture) override;

 protected:
  void WriteOwnState(nlohmann::json& out) const override;

 private:
  std::vector<OptionButton*> group_;
};

// A command button ("CommandButton"). click: Click.
class CommandButton : public Control {
 public:
  CommandButton(std::string name, int index = -1, std::string type_name = "CommandButton")
      : Control(std::move(type_name), std::move(name), index) {}
  std::function<void()> Click;
  std::string Apply(const Gesture& gesture) override;
};

}  // namespace kvhost
