// The context the frame's procedures need in tests: the program folder, options, and a print
// engine; no database.
#pragma once

#include <map>
#include <stdexcept>
#include <string>

#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/print_contract.h"

namespace mrvk {

// The context a layout procedure needs: the program folder and the options.
class LayoutContext : public IHostContext,
                      public IHostEnvironment,
                      public IHostLastError,
                      public IHostPrintEngine {
 public:
  explicit LayoutContext(std::string app_path) : app_path_(std::move(app_path)) {}
  std::map<std::string, std::string> options;

  IHostDatabase& Database() override { throw std::logic_error("no database in layout tests"); }
  IHostEnvironment& Environment() override { return *this; }
  IHostLastError& LastError() override { return *this; }
  IHostOption GetOption(const Variant& key) override {
    auto it = options.find(key.ToString());
    return {it == options.end() ? "" : it->second};
  }
  IHostOption GetSystemOption(const Variant& key) override { return GetOption(key); }
  bool BillCode(int32_t, Date, std::string&, bool) override { return false; }
  bool ReleaseBillCode(int32_t, Date, const std::string&) override { return false; }
  void ShowPicker(kvhost::KvTxt&, std::string&, Variant&) override {}
  void CheckPicker(kvhost::KvTxt&, const std::string&, Variant&, std::string&) override {}
  IHostPicker* Picker(const std::string&) override { return nullptr; }
  IHostPrintEngine* PrintEngine() override { return this; }
  std::string OrganisationName() const override { return "阳光物业"; }
  std::string JobText2() const override { return "制表：张三"; }
  IHostDialogHost* DialogHost() override { return nullptr; }
  std::string UserName() const override { return "张三"; }
  std::string AppPath() const override { return app_path_; }
  Date LoginDate() const override { return Date::FromYmd(2012, 10, 11); }
  std::string Text() const override { return ""; }

 private:
  std::string app_path_;
};

}  // namespace mrvk
