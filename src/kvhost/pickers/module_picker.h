// The service of a key whose picker is a class of the module ("selpdm" -> selPdm, "selpdmfy"
// -> selPdmFy, "sel_fy" -> Sel_FY, "sel_ht" -> Sel_HT): the host creates the class by name,
// drives it through IPickerUI in the documented order (Init, Parameters, then Refresh or
// Validate), and shows its controls in a picker window until it raises DoSelect or DoCancel.
#pragma once

#include <memory>
#include <string>

#include "kvhost/pickers/picker_form.h"
#include "mrvk/frame/picker_contract.h"

namespace kvhost {

class ModulePicker : public mrvk::IHostPicker {
 public:
  ModulePicker(mrvk::IHostContext& context, std::string key, std::string class_name,
               std::string caption);
  ~ModulePicker() override;

  // Creates the class and calls its Init once, then DoGetFormStatus (its saved settings); a
  // class that cannot be created is said in a message box ("不能创建选择列表：" and why) and
  // answers false. The picker's Clear, when the service goes, saves its settings.
  bool Init(int32_t progID) override;
  mrvk::IHostPickerParameters& Parameters() override { return *parameters_; }
  // Hands the parameters to the picker and asks it.
  bool Validate(const std::string& key, const std::string& value_column,
                const std::string& text_column, const std::string& input, mrvk::Variant& value,
                std::string& text) override;
  // Empties the picker's Value and Text, hands it the parameters, Refresh, then shows its
  // window. On DoSelect text and value take the picker's Text and Value; a picker that left
  // its Value Empty chose through its result object (clsPdm, clsFy), whose key and name they
  // take then. DoCancel or the window's close box: false, text "".
  bool Show(std::string& text, mrvk::Variant& value) override;
  mrvk::IPickerObject* Objects() override { return picker_ ? picker_->Objects() : nullptr; }

  // The module's object behind the key; null before Init.
  mrvk::ModuleObject* Object() { return object_.get(); }

 private:
  enum class Outcome { None, Selected, Cancelled };

  mrvk::IHostContext& context_;
  std::string key_;
  std::string class_name_;
  std::string caption_;
  std::shared_ptr<mrvk::IHostPickerParameters> parameters_;
  std::unique_ptr<mrvk::ModuleObject> object_;
  mrvk::IPickerUI* picker_ = nullptr;
  std::unique_ptr<PickerForm> form_;
  bool initialised_ = false;
  Outcome outcome_ = Outcome::None;
};

}  // namespace kvhost
