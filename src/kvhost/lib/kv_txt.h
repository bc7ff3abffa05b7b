// The labelled field of the sheets ("kvTxt_S"): a caption, the shown Text, the Value behind
// it (for a bound field the chosen row's ID), and an inner configuration that binds the
// field to a lookup: the statement that checks a typed text, the picker behind the button,
// the columns that give the value and the text, and the message for a text that finds
// nothing.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kvhost/lib/control.h"
#include "mrvk/frame/variant.h"

namespace kvhost {

// What the field holds; date fields show dates as "yyyy-mm-dd".
enum class FieldKind { Text, Date, Number };

// The inner object of a field, set once by the sheet.
struct KvTxtConfig {
  std::string ValueColumn;    // column of the checked row that goes to Value ("物业ID")
  std::string DisplayColumn;  // column of the checked row that goes to Text ("物业名称")
  std::string PickerKey;      // the list picker the button opens
  std::string ValidateSql;    // checks a typed text; every @ stands for the text
  std::string ErrorMessage;   // shown when the check finds nothing
  // A closed list in place of a picker: "|按户|按面积|按用量" (the first entry may be empty).
  std::string ListText;
  int Style = 0;            // the field's style value (3: a closed list)
  bool ShowButton = false;  // the picker or list button shows
  bool CheckInput = false;  // a typed text is checked when the field is left
  // A typed text the check does not find is kept as a new entry, which the sheet creates
  // when it saves ("可直接输入"); such a field is valid without a value.
  bool FreeText = false;
};

class KvTxt : public Control {
 public:
  KvTxt(std::string name, int index = -1) : Control("kvTxt_S", std::move(name), index) {}

  std::string Text;
  mrvk::Variant Value = mrvk::Variant(int32_t{0});
  FieldKind Kind = FieldKind::Text;
  std::string Unit;   // shown behind the field (" 元", "/月")
  int MaxLength = 0;  // 0: no limit, in characters
  KvTxtConfig Config;

  // The value changed (typed or picked).
  std::function<void()> Change;
  // The picker button: the handler opens the picker and leaves the choice in text and value.
  std::function<void(std::string& text, mrvk::Variant& value)> ShowPicker;
  // A typed text to check: the handler looks it up and leaves the row's value and text.
  std::function<void(const std::string& typed, mrvk::Variant& value, std::string& text)>
      CheckPicker;
  std::function<void()> LostFocus;

  // The entries of Config.ListText.
  std::vector<std::string> ListEntries() const;

  // True when the field takes input: visible, enabled and not locked.
  bool IsActive() const;
  // True when what the field holds can be saved: a date field holds a date or nothing, a
  // number field a number or nothing, a bound field that checks typed text a value for its
  // text (unless it takes free text). Otherwise the field shows its message (ErrorMessage, or the
  // trimmed caption and "输入有误，请重新输入！") and answers false.
  bool IsValid() const;

  // type: Text = text, then Change. leave: a checked field with a non-empty text changed
  // since the last check, or typed to differ from what it held before typing, raises
  // CheckPicker; an emptied bound field loses its Value; a date field reformats a
  // typed date as "yyyy-mm-dd"; then LostFocus. pick: a closed list takes the entry given
  // as text, then Change; otherwise ShowPicker, and a changed choice raises Change (a list
  // cancelled or left unchanged leaves the field as it was, unchecked text too). check:
  // CheckPicker with the present text.
  std::string Apply(const Gesture& gesture) override;

 protected:
  void WriteOwnState(nlohmann::json& out) const override;

 private:
  void RunCheck();
  std::string checked_text_;  // the text as it stood after the last check or pick
  std::string entry_text_;    // the text before the person began typing
  bool typing_ = false;       // typed since the field was last left
};

}  // namespace kvhost
