// The status tools of a rental contract, run by the host on the contract in hand:
// cFwHd_finish ends an approved contract by hand (状态 "终止"), cFwHd_unfinish sets it back to
// "生效". Each writes the state and recomputes the rental state of the contract's unit and
// room in one bracket; the collection schedule is left as it is.
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

// What the two tools share: the context, function key and contract ID from Init, the error
// object, and an Action that runs the tool's guards, then writes the state in one bracket.
class FwHdStatusTool : public ModuleObject, public IToolUI {
 public:
  // The tool keeps no parameters: a written collection is dropped.
  void SetParameters(std::shared_ptr<IParameters>) override {}
  bool Init(IHostContext& context, int32_t& progID, int32_t& record_id) override;
  bool Clear() override;
  std::string Author() override { return ""; }
  std::string Version() override { return ""; }
  std::string FriendlyName() override { return ""; }
  std::string Description() override { return ""; }
  // True only when the contract's state was written.
  bool Action(int32_t action) override;
  std::string Error() override { return error_; }

 protected:
  // The tool's words: the state it writes, the prefix of a failed write, the box of success.
  struct Words {
    const char* state;
    const char* failure;
    const char* done;
  };
  virtual Words Say() const = 0;
  // The refusals on the contract, before its unit is read (on the contract ID as SQL); true
  // when the tool goes no further.
  virtual bool Refused(IHostDatabase& db, const std::string& id) = 0;
  // The refusals on the contract's unit (its ID as SQL), before the bracket; none by default.
  virtual bool UnitRefused(IHostDatabase&, const std::string&) { return false; }
  // Whether the read just made failed; its text is then reported as the tool's failure.
  bool ReadFailed(IHostDatabase& db);

 private:
  // The box of a failure: prefix + the database's or run time's text, kept in the error
  // object.
  void ReportFailure(const std::string& prefix, const std::string& text);
  // The steps of both tools on the contract ID as SQL: the refusals, the unit and room, then
  // the state and the rental state in one bracket.
  bool Steps(IHostDatabase& db, const std::string& id);

  IHostContext* context_ = nullptr;
  int32_t prog_id_ = 0;
  int32_t id_ = 0;
  std::string error_;
};

class cFwHd_finish : public FwHdStatusTool {
 public:
  std::string ClassName() const override { return "cFwHd_finish"; }

 private:
  Words Say() const override;
  bool Refused(IHostDatabase& db, const std::string& id) override;
};

class cFwHd_unfinish : public FwHdStatusTool {
 public:
  std::string ClassName() const override { return "cFwHd_unfinish"; }

 private:
  Words Say() const override;
  bool Refused(IHostDatabase& db, const std::string& id) override;
  bool UnitRefused(IHostDatabase& db, const std::string& unit) override;
};

std::unique_ptr<ModuleObject> NewcFwHd_finish();
std::unique_ptr<ModuleObject> NewcFwHd_unfinish();

}  // namespace mrvk
