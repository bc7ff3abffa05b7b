// A dialog of the module (an entry dialog, a search dialog): its own controls, shown modally
// through the session's UI port until it hides itself.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "kvhost/lib/control_list.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

class Dialog : public mrvk::IModalForm {
 public:
  explicit Dialog(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const { return name_; }
  ControlList& Controls() { return controls_; }
  const ControlList& Controls() const { return controls_; }
  std::string Caption;

  // Shows the dialog modally: Activate runs first; then the person works on it until a
  // handler calls Hide (or the window is closed). Returns then.
  void Show();
  void Hide() { shown_ = false; }
  // The window's close box: QueryUnload when wired, else Hide.
  void Close();
  bool IsShown() const override { return shown_; }
  std::string Title() const override { return Caption; }

  std::function<void()> Activate;
  std::function<void()> QueryUnload;

  // What the form is for front ends: "dialog", or "picker" for a picker's list.
  virtual std::string Kind() const { return "dialog"; }
  // {"name", "caption", "controls": [...]} for front ends; a picker adds the rows it offers.
  virtual void WriteState(nlohmann::json& out) const;
  // A front end's answer to the shown form. A dialog takes any value as the close box
  // (Close); a picker takes the indexes of the chosen rows, or null to cancel. Returns "" or
  // why the answer was not taken (the form is then still shown).
  virtual std::string Answer(const mrvk::Variant& value);

 private:
  std::string name_;
  ControlList controls_;
  bool shown_ = false;
};

}  // namespace kvhost
