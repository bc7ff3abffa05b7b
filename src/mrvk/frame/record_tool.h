// The frame of the tools the host runs on one record (a unit, a contract): the context,
// function key and record ID from Init, no parameters, the error object, and an Action that
// runs the tool's steps with the connection released on every way out.
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

class RecordTool : public ModuleObject, public IToolUI {
 public:
  // The tool keeps no parameters: a written collection is dropped.
  void SetParameters(std::shared_ptr<IParameters>) override {}
  bool Init(IHostContext& context, int32_t& progID, int32_t& record_id) override;
  bool Clear() override;
  std::string Author() override { return ""; }
  std::string Version() override { return ""; }
  std::string FriendlyName() override { return ""; }
  std::string Description() override { return ""; }
  // Steps on the record's ID; a run-time failure is shown as FailurePrefix() + its text.
  // True only when the tool wrote what it is for.
  bool Action(int32_t action) override;
  std::string Error() override { return error_; }

 protected:
  // The tool's steps on db for the record's ID as SQL.
  virtual bool Steps(IHostDatabase& db, const std::string& id) = 0;
  // What a failure's box begins with.
  virtual std::string FailurePrefix() const = 0;
  // The box of a failure: prefix + text (critical, the application's title); the error object
  // keeps the text.
  void ReportFailure(const std::string& prefix, const std::string& text);

  IHostContext* context_ = nullptr;
  int32_t prog_id_ = 0;
  int32_t id_ = 0;
  std::string error_;
};

}  // namespace mrvk
