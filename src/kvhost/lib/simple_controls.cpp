#include "kvhost/lib/simple_controls.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kvhost {
namespace {

void Raise(const std::function<void()>& handler) {
  if (handler) handler();
}

}  // namespace

std::string TextBox::Apply(const Gesture& g) {
  if (g.kind == "type") {
    if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
    Text = MaxLength > 0 ? CutToCharacters(g.text, MaxLength) : g.text;
    Raise(Change);
    return "";
  }
  if (g.kind == "leave") {
    Raise(LostFocus);
    return "";
  }
  if (g.kind == "keydown") {
    if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
    if (g.row < 0) return DisplayName() + ": keydown needs the key code in row";
    if (KeyDown) KeyDown(g.row, g.col < 0 ? 0 : g.col);
    return "";
  }
  return Unsupported(g);
}

void TextBox::WriteOwnState(nlohmann::json& out) const {
  out["text"] = Text;
  if (MaxLength > 0) out["maxlength"] = MaxLength;
  if (MultiLine) out["multiline"] = true;
}

std::string ComboBox::Apply(const Gesture& g) {
  if (g.kind != "pick") return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
  if (std::find(List.begin(), List.end(), g.text) == List.end())
    return "\"" + g.text + "\" is not an entry of " + DisplayName();
  Text = g.text;
  Raise(Click);
  return "";
}

void ComboBox::WriteOwnState(nlohmann::json& out) const {
  out["text"] = Text;
  out["list"] = List;
}

std::string CheckBox::Apply(const Gesture& g) {
  if (g.kind != "toggle" && g.kind != "click") return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
  Value = Value == 1 ? 0 : 1;
  Raise(Click);
  return "";
}

void CheckBox::WriteOwnState(nlohmann::json& out) const { out["value"] = Value; }

void OptionButton::SetGroup(const std::vector<OptionButton*>& group) {
  for (OptionButton* b : group) b->group_ = group;
}

void OptionButton::Select() {
  for (OptionButton* other : group_) other->Value = false;
  Value = true;
}

std::string OptionButton::Apply(const Gesture& g) {
  if (g.kind != "click" && g.kind != "toggle") return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
  Select();
  Raise(Click);
  return "";
}

void OptionButton::WriteOwnState(nlohmann::json& out) const { out["value"] = Value; }

std::string CommandButton::Apply(const Gesture& g) {
  if (g.kind != "click") return Unsupported(g);
  if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
  Raise(Click);
  return "";
}

}  // namespace kvhost
