#include "kvhost/pickers/module_picker.h"

#include "mrvk/frame/vb.h"
#include "mrvk/registry.h"

namespace kvhost {

ModulePicker::ModulePicker(mrvk::IHostContext& context, std::string key, std::string class_name,
                           std::string caption)
    : context_(context),
      key_(std::move(key)),
      class_name_(std::move(class_name)),
      caption_(std::move(caption)),
      parameters_(std::make_shared<mrvk::IHostPickerParameters>()) {}

ModulePicker::~ModulePicker() {
  if (picker_ && initialised_) picker_->Clear();
}

bool ModulePicker::Init(int32_t progID) {
  if (!object_) {
    std::string error;
    auto object = mrvk::CreateObject(class_name_, error);
    auto* picker = dynamic_cast<mrvk::IPickerUI*>(object.get());
    if (!picker) {
      mrvk::MsgBox("不能创建选择列表：" +
                       (error.empty() ? "class \"" + class_name_ + "\" is no picker" : error),
                   mrvk::msgbox::kCritical, "");
      return false;
    }
    object->AttachSink([this](const mrvk::Event& e) {
      if (e.id != mrvk::event_id::kDoSelect && e.id != mrvk::event_id::kDoCancel) return;
      if (e.name != "DoSelect" && e.name != "DoCancel") return;
      outcome_ = e.name == "DoSelect" ? Outcome::Selected : Outcome::Cancelled;
      if (form_ && form_->IsShown()) form_->Hide();
    });
    form_ = std::make_unique<PickerForm>(class_name_, dynamic_cast<mrvk::IPickerList*>(picker));
    form_->Caption = caption_;
    if (auto* design = dynamic_cast<mrvk::IDesignUI*>(object.get())) {
      for (Control* c : design->Controls()) form_->Controls().Add(*c);
    }
    picker_ = picker;
    object_ = std::move(object);
  }
  if (!initialised_) {
    initialised_ = picker_->Init(context_, progID, key_);
    // The picker's saved settings come back once, as a screen's layout after it is up.
    if (initialised_) picker_->DoGetFormStatus();
  }
  return initialised_;
}

bool ModulePicker::Validate(const std::string& key, const std::string& value_column,
                            const std::string& text_column, const std::string& input,
                            mrvk::Variant& value, std::string& text) {
  if (!picker_ || !initialised_) return false;
  picker_->SetPickerParameters(parameters_);
  return picker_->Validate(key, value_column, text_column, input, value, text);
}

bool ModulePicker::Show(std::string& text, mrvk::Variant& value) {
  if (!picker_ || !initialised_) return false;
  picker_->SetPickerParameters(parameters_);
  picker_->SetValue(mrvk::Variant());
  picker_->SetText("");
  outcome_ = Outcome::None;
  picker_->Refresh();
  if (auto* design = dynamic_cast<mrvk::IDesignUI*>(object_.get()))
    form_->Controls().SetFocus(design->Controls().Focused());
  form_->Show();
  if (outcome_ != Outcome::Selected) {
    text.clear();
    return false;
  }
  mrvk::Variant chosen = picker_->GetValue();
  std::string chosen_text = picker_->GetText();
  if (chosen.IsEmpty()) {
    if (mrvk::IPickerObject* row = picker_->Objects()) {
      chosen = row->ChosenValue();
      chosen_text = row->ChosenText();
    }
  }
  value = std::move(chosen);
  text = std::move(chosen_text);
  return true;
}

}  // namespace kvhost
