#include "kvhost/lib/kv_txt.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

// True when the whole text reads as a number ("12", "-3.5", "1e3").
bool IsNumberText(const std::string& text) {
  double value = 0;
  const char* end = text.data() + text.size();
  auto [ptr, ec] = std::from_chars(text.data(), end, value);
  return ec == std::errc() && ptr == end;
}

}  // namespace

std::vector<std::string> KvTxt::ListEntries() const {
  std::vector<std::string> entries;
  if (Config.ListText.empty()) return entries;
  size_t start = Config.ListText[0] == '|' ? 1 : 0;
  // A leading "|" makes the first entry the empty one.
  if (start == 1) entries.emplace_back();
  while (start <= Config.ListText.size()) {
    size_t bar = Config.ListText.find('|', start);
    if (bar == std::string::npos) bar = Config.ListText.size();
    std::string entry = Config.ListText.substr(start, bar - start);
    if (!entry.empty()) entries.push_back(entry);
    start = bar + 1;
  }
  return entries;
}

bool KvTxt::IsActive() const { return Visible && Enabled && !Locked; }

bool KvTxt::IsValid() const {
  const std::string text = mrvk::Trim(Text);
  bool ok = true;
  if (!text.empty()) {
    switch (Kind) {
      case FieldKind::Date:
        ok = mrvk::ParseDate(text).has_value();
        break;
      case FieldKind::Number:
        ok = IsNumberText(text);
        break;
      case FieldKind::Text:
        ok = !Config.CheckInput || Config.FreeText || Value.ToDouble() != 0;
        break;
    }
  }
  if (ok) return true;
  mrvk::MsgBox(Config.ErrorMessage.empty() ? mrvk::Trim(Caption) + "输入有误，请重新输入！"
                                           : Config.ErrorMessage,
               mrvk::msgbox::kExclamation, "");
  return false;
}

void KvTxt::RunCheck() {
  if (CheckPicker) CheckPicker(Text, Value, Text);
  checked_text_ = Text;
  typing_ = false;
}

std::string KvTxt::Apply(const Gesture& g) {
  if (g.kind == "type") {
    if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
    if (!typing_) entry_text_ = Text;
    typing_ = true;
    Text = MaxLength > 0 ? CutToCharacters(g.text, MaxLength) : g.text;
    if (Change) Change();
    return "";
  }
  if (g.kind == "leave") {
    if (Kind == FieldKind::Date) {
      if (auto d = mrvk::ParseDate(mrvk::Trim(Text))) Text = d->ToText();
    }
    // Typed over what the program wrote since the last check (a form emptied for a new
    // record), the text is checked again even when it equals the one checked before.
    const bool retyped = typing_ && Text != entry_text_;
    typing_ = false;
    if (Config.CheckInput && (Text != checked_text_ || retyped)) {
      if (mrvk::Trim(Text).empty()) {
        Value = mrvk::Variant(int32_t{0});
        checked_text_ = Text;
      } else {
        RunCheck();
      }
    }
    if (LostFocus) LostFocus();
    return "";
  }
  if (g.kind == "pick") {
    if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
    if (!Config.ListText.empty()) {
      const auto entries = ListEntries();
      if (std::find(entries.begin(), entries.end(), g.text) == entries.end())
        return "\"" + g.text + "\" is not an entry of " + DisplayName();
      Text = g.text;
      checked_text_ = Text;
      if (Change) Change();
      return "";
    }
    if (!ShowPicker) return DisplayName() + " has no picker";
    const std::string before = Text;
    const mrvk::Variant before_value = Value;
    ShowPicker(Text, Value);
    // A cancelled list leaves the field as it was, a typed text still to be checked included.
    if (Text != before || !(Value == before_value)) {
      checked_text_ = Text;
      typing_ = false;
      if (Change) Change();
    }
    return "";
  }
  if (g.kind == "check") {
    if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
    RunCheck();
    return "";
  }
  return Unsupported(g);
}

void KvTxt::WriteOwnState(nlohmann::json& out) const {
  out["text"] = Text;
  out["value"] =
      Value.IsNumeric() ? nlohmann::json(Value.ToDouble()) : nlohmann::json(Value.ToString());
  out["kind"] = Kind == FieldKind::Date ? "date" : Kind == FieldKind::Number ? "number" : "text";
  if (!Unit.empty()) out["unit"] = Unit;
  if (MaxLength > 0) out["maxlength"] = MaxLength;
  if (!Config.ListText.empty()) out["list"] = ListEntries();
  // The button shows as the field's style says; a sheet may hand every field a picker
  // handler, but only fields that show the button offer it.
  out["button"] = Config.ShowButton;
}

}  // namespace kvhost
