// Controls are view-models: a control holds the state of one thing on a screen (caption,
// text, value, enabled, locked, visible, rows, cells) and raises the events a person's
// gesture raises in a real control, through handlers the owning class wires in its
// constructor. Front ends draw a control from its state (WriteState) and send gestures
// (Apply). Nothing here draws.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kvhost {

// What a person does to a control. `kind` is one of: type (text), leave, pick (the picker
// button; for a closed list, text is the chosen entry), check (validate a typed text),
// cell_edit (row, col, text), cell_click (row, col), cell_dblclick (row, col), select (key:
// a tree node), click, toggle.
struct Gesture {
  std::string kind;
  std::string text = {};
  int row = -1;
  int col = -1;
  std::string key = {};
};

class Control {
 public:
  // type_name is the control's type as the logic tests it ("kvTxt_S", "CheckBox",
  // "VsFlexGrid", ...); name and index as the screen names it: kvTxt(2) is ("kvTxt", 2),
  // a control outside an array has index -1.
  Control(std::string type_name, std::string name, int index = -1)
      : type_name_(std::move(type_name)), name_(std::move(name)), index_(index) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& TypeName() const { return type_name_; }
  const std::string& Name() const { return name_; }
  int Index() const { return index_; }

  std::string Caption;
  bool Enabled = true;
  bool Visible = true;
  bool Locked = false;
  std::string ToolTipText;
  // The frame or page the control sits in ("" for the screen itself).
  std::string Container;
  // Position and size in the screen's unit; layouts store them.
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;

  // Applies a person's gesture, raising the events it raises. Returns "" when the gesture
  // was applied, otherwise why not ("kvTxt(2) is locked", "CheckBox has no gesture
  // \"cell_edit\""): nothing has changed then. Handlers may throw run-time failures; the
  // host catches them at its edge.
  virtual std::string Apply(const Gesture& gesture);

  // Writes the control's state for front ends into `out` (a JSON object): the common
  // members, then those of the control's kind.
  void WriteState(nlohmann::json& out) const;

  // "kvTxt(2)" or "Vs": how messages name the control.
  std::string DisplayName() const;

 protected:
  // The members of the control's own kind.
  virtual void WriteOwnState(nlohmann::json& out) const;
  // The answer for a gesture this kind of control does not take.
  std::string Unsupported(const Gesture& gesture) const;
  // The answer for a gesture on a disabled, hidden or (when `locked_counts`) locked control;
  // "" when the control takes input.
  std::string RefusesInput(bool locked_counts) const;

 private:
  std::string type_name_;
  std::string name_;
  int index_;
};

// The first `limit` characters of a UTF-8 text: what a field with a length limit keeps.
std::string CutToCharacters(const std::string& text, int limit);

}  // namespace kvhost
