// The pickers: the service object the host hands out by key (IHostPicker) with its named
// parameters, the interface a picker class of the module serves (IPickerUI), the chosen row
// it hands back (IPickerObject), and the list a picker's window offers (IPickerList).
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mrvk/frame/host_contract.h"

namespace kvhost {
class Control;     // kvhost/lib/control.h
class VsFlexGrid;  // the list grid, kvhost/lib/vs_flex_grid.h
}  // namespace kvhost

namespace mrvk {

// One named parameter of a picker; Value reads and writes.
struct IHostPickerParameter {
  Variant Value;
};

// The named parameters of a picker, names without regard to case (ASCII). A service is shared
// by key, so its users set the parameters anew on every use.
class IHostPickerParameters {
 public:
  // The entry of the name; a name not set yet is added with an Empty value, so that
  // `Item("single").Value = 1` sets it.
  IHostPickerParameter& Item(const std::string& name) { return entries_[KeyOf(name)]; }
  // The value of the name; Empty when it is not set (nothing is added).
  Variant Value(const std::string& name) const {
    auto it = entries_.find(KeyOf(name));
    return it == entries_.end() ? Variant() : it->second.Value;
  }
  bool Exists(const std::string& name) const { return entries_.count(KeyOf(name)) > 0; }
  void Clear() { entries_.clear(); }
  size_t Count() const { return entries_.size(); }

 private:
  static std::string KeyOf(std::string name) {
    for (char& c : name) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return name;
  }
  std::map<std::string, IHostPickerParameter> entries_;
};

// The chosen row a picker hands back (clsPdm, clsFy, or a row of a host list).
class IPickerObject {
 public:
  virtual ~IPickerObject() = default;
  // A member by its name ("lID", "s名称", a column of a host list); Empty for a name the
  // object does not have.
  virtual Variant Item(const std::string& name) const = 0;
  // The chosen row's key and name, what a field takes as its Value and Text.
  virtual Variant ChosenValue() const = 0;
  virtual std::string ChosenText() const = 0;
};

// The service object of IHostContext::Picker(key).
class IHostPicker {
 public:
  virtual ~IHostPicker() = default;
  // Creates the picker behind the key, if not yet done. False stops the use (the picker
  // cannot be made; the host has said why).
  virtual bool Init(int32_t progID) = 0;
  virtual IHostPickerParameters& Parameters() = 0;
  // Checks a typed text without showing the list. key, value_column and text_column are the
  // three texts of the field's check request ("" for the picker's own columns). True when a
  // row was found: value and text take it; otherwise both are emptied.
  virtual bool Validate(const std::string& key, const std::string& value_column,
                        const std::string& text_column, const std::string& input, Variant& value,
                        std::string& text) = 0;
  // Shows the list modally. True when the person chose: text and value take the choice. A
  // cancel answers false and leaves text empty (value as it was).
  virtual bool Show(std::string& text, Variant& value) = 0;
  // The chosen row of the last Show or Validate; null before any.
  virtual IPickerObject* Objects() = 0;
};

// The interface a picker class of the module serves.
class IPickerUI {
 public:
  virtual ~IPickerUI() = default;
  virtual bool Init(IHostContext& context, int32_t progID, const std::string& name) = 0;
  virtual bool Clear() = 0;
  virtual bool Refresh() = 0;
  virtual bool GetIsDirty() = 0;
  virtual void SetIsDirty(bool dirty) = 0;
  virtual void DoGetFormStatus() = 0;
  virtual void DoSaveFormStatus() = 0;
  virtual std::string Attributes(const std::string& key) = 0;
  virtual std::shared_ptr<IHostPickerParameters> GetPickerParameters() = 0;
  virtual void SetPickerParameters(std::shared_ptr<IHostPickerParameters> parameters) = 0;
  virtual Variant GetValue() = 0;
  virtual void SetValue(const Variant& value) = 0;
  virtual std::string GetText() = 0;
  virtual void SetText(const std::string& text) = 0;
  // The result object; null when the picker has none.
  virtual IPickerObject* Objects() = 0;
  // Checks a typed text without showing the picker (see IHostPicker::Validate).
  virtual bool Validate(const std::string& key, const std::string& value_column,
                        const std::string& text_column, const std::string& input, Variant& value,
                        std::string& text) = 0;
};

// The list in a picker's window, as the host's window drives it when a front end answers it
// with row indexes instead of gestures. A row index counts the grid's data rows from 0 (grid
// row FixedRows is index 0).
class IPickerList {
 public:
  virtual ~IPickerList() = default;
  virtual kvhost::VsFlexGrid& ListGrid() = 0;
  // The field whose text narrows the list as it is typed (its change event searches); null
  // when the list has none. A front end with a search box of its own types into this one.
  virtual const kvhost::Control* FindBox() const { return nullptr; }
  // Whether several rows can be chosen at once.
  virtual bool MultipleRows() const = 0;
  // Chooses these rows as the person would (a single row becomes the current row, several
  // rows are ticked and the others cleared) and confirms, as the confirm button does.
  virtual void ChooseRows(const std::vector<int>& rows) = 0;
  // Gives up, as the cancel button does.
  virtual void CancelChoice() = 0;
};

}  // namespace mrvk
