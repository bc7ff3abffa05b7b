// The validity tools of a housing unit, run by the host on the unit in hand: cFwFy_finish
// withdraws the unit (出租状态 "已失效"), so it takes part in no approval; cFwFy_unfinish brings
// it back as "未出租". Each writes one statement and leaves the rooms as they are.
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

// What the two tools share: the context, function key and unit ID from Init, the error
// object, and an Action that runs the tool's steps, reports a run-time failure in a box and
// releases the connection.
class FwFyValidityTool : public ModuleObject, public IToolUI {
 public:
  // The tool keeps no parameters: a written collection is dropped.
  void SetParameters(std::shared_ptr<IParameters>) override {}
  bool Init(IHostContext& context, int32_t& progID, int32_t& record_id) override;
  bool Clear() override;
  std::string Author() override { return ""; }
  std::string Version() override { return ""; }
  std::string FriendlyName() override { return ""; }
  std::string Description() override { return ""; }
  // True only when the unit's state was written.
  bool Action(int32_t action) override;
  std::string Error() override { return error_; }

 protected:
  // The tool's steps on db for the unit ID; true when the state was written.
  virtual bool Steps(IHostDatabase& db, const std::string& id) = 0;
  // The box of a failed write: prefix + the database's text, which the error object keeps.
  void ReportFailure(const std::string& prefix, const std::string& text);

 private:
  IHostContext* context_ = nullptr;
  int32_t prog_id_ = 0;
  int32_t id_ = 0;
  std::string error_;
};

class cFwFy_finish : public FwFyValidityTool {
 public:
  std::string ClassName() const override { return "cFwFy_finish"; }

 private:
  bool Steps(IHostDatabase& db, const std::string& id) override;
};

class cFwFy_unfinish : public FwFyValidityTool {
 public:
  std::string ClassName() const override { return "cFwFy_unfinish"; }

 private:
  bool Steps(IHostDatabase& db, const std::string& id) override;
};

std::unique_ptr<ModuleObject> NewcFwFy_finish();
std::unique_ptr<ModuleObject> NewcFwFy_unfinish();

}  // namespace mrvk
