// The controls of one screen or dialog in screen order, and control arrays (kvTxt(2)).
#pragma once

#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "kvhost/lib/control.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

// The controls of a screen, in the screen's control order. It does not own them: they are
// members of the class that builds the screen.
class ControlList {
 public:
  void Add(Control& control) { controls_.push_back(&control); }
  size_t Count() const { return controls_.size(); }
  Control& Item(size_t i) const { return *controls_[i]; }
  auto begin() const { return controls_.begin(); }
  auto end() const { return controls_.end(); }
  // The control by name (without regard to case) and index (-1 outside an array); null when
  // the screen has none.
  Control* Find(const std::string& name, int index = -1) const;

  // The control that has the input focus; null for none.
  Control* Focused() const { return focused_; }
  void SetFocus(Control* control) { focused_ = control; }

 private:
  std::vector<Control*> controls_;
  Control* focused_ = nullptr;
};

// The state of every control of the list, in order, for front ends (a JSON array).
nlohmann::json ControlsState(const ControlList& list);

// A control array: kvTxt(2) is kvTxt[2]. Elements are made by Add, in screen order, and
// registered in the screen's list.
template <typename T>
class ControlArray {
 public:
  explicit ControlArray(std::string name) : name_(std::move(name)) {}

  template <typename... Args>
  T& Add(ControlList& list, int index, Args&&... args) {
    auto control = std::make_unique<T>(name_, index, std::forward<Args>(args)...);
    T& ref = *control;
    items_[index] = std::move(control);
    list.Add(ref);
    return ref;
  }
  // The element; a missing index is VB's run-time failure "control array element does not
  // exist" (throws mrvk::VbError 340), which the procedures' handlers catch.
  T& operator[](int index) const {
    auto it = items_.find(index);
    if (it == items_.end())
      throw mrvk::VbError(mrvk::vb_error::kControlArrayElement,
                          "控件数组元素不存在: " + name_ + "(" + std::to_string(index) + ")");
    return *it->second;
  }
  bool Exists(int index) const { return items_.count(index) > 0; }
  const std::string& Name() const { return name_; }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  std::string name_;
  std::map<int, std::unique_ptr<T>> items_;
};

}  // namespace kvhost
