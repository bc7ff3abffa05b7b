// The context object the host gives to every Init: database, environment, options and the
// document numbers.
#pragma once

#include <map>
#include <string>

#include "kvhost/db/database.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/pickers/picker_registry.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/print_contract.h"

namespace kvhost {

class HostContext : public mrvk::IHostContext,
                    public mrvk::IHostEnvironment,
                    public mrvk::IHostLastError,
                    public mrvk::IHostPrintEngine {
 public:
  HostContext(db::Database& db, std::map<std::string, std::string>& options, std::string user,
              std::string app_path, mrvk::Date login_date)
      : db_(db),
        options_(options),
        user_(std::move(user)),
        app_path_(std::move(app_path)),
        login_date_(login_date) {}

  // IHostContext
  mrvk::IHostDatabase& Database() override { return db_; }
  mrvk::IHostEnvironment& Environment() override { return *this; }
  mrvk::IHostLastError& LastError() override { return *this; }
  // The option's text; an unknown key gives "".
  mrvk::IHostOption GetOption(const mrvk::Variant& key) override;
  mrvk::IHostOption GetSystemOption(const mrvk::Variant& key) override;
  // Document numbers: a prefix by function ("HT" contracts, "SK" receipts, "DJ" others),
  // the year and month of the date, and a four-digit sequence per function and month:
  // "HT2012100001". See the definition for preview, typed numbers and concurrency.
  bool BillCode(int32_t progID, mrvk::Date date, std::string& code, bool preview) override;
  bool ReleaseBillCode(int32_t progID, mrvk::Date date, const std::string& code) override;
  // The list of a field's picker key (PickerRegistry::ShowFieldPicker); without a list for
  // the key, a message box says so and the field stays as it was.
  void ShowPicker(KvTxt& field, std::string& text, mrvk::Variant& value) override;
  void CheckPicker(KvTxt& field, const std::string& typed, mrvk::Variant& value,
                   std::string& text) override;
  mrvk::IHostPicker* Picker(const std::string& key) override { return pickers_.Service(key); }
  mrvk::IHostPrintEngine* PrintEngine() override { return this; }
  mrvk::IHostDialogHost* DialogHost() override { return nullptr; }

  // IHostEnvironment
  std::string UserName() const override { return user_; }
  std::string AppPath() const override { return app_path_; }
  mrvk::Date LoginDate() const override { return login_date_; }

  // IHostPrintEngine: the host options "organisation" (the name at the head of printed
  // reports) and "printjobtext2" (the footer of a grid print).
  std::string OrganisationName() const override { return Option("organisation"); }
  std::string JobText2() const override { return Option("printjobtext2"); }

  // IHostLastError: the text of the host's last failure.
  std::string Text() const override { return last_error_; }
  void SetLastError(std::string text) { last_error_ = std::move(text); }

  // The number that BillCode gives for sequence number seq.
  static std::string FormatBillCode(int32_t progID, mrvk::Date date, int64_t seq);

 private:
  std::string Option(const std::string& key) const {
    auto it = options_.find(key);
    return it == options_.end() ? std::string() : it->second;
  }
  // The last number issued for progID in date's month (0 when none); -1 on a database error.
  int64_t LastIssued(int32_t progID, const std::string& period);

  db::Database& db_;
  std::map<std::string, std::string>& options_;
  std::string user_;
  std::string app_path_;
  mrvk::Date login_date_;
  std::string last_error_;
  PickerRegistry pickers_{*this};
};

}  // namespace kvhost
