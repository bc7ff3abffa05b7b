// The status tools of a rental contract, run by the host on the contract in hand:
// cFwHd_finish ends an approved contract by hand (状态 "终止"), cFwHd_unfinish sets it back to
// "生效". Each writes the state and recomputes the rental state of the contract's unit and
// room in one bracket; the collection schedule is left as it is.
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/record_tool.h"

namespace mrvk {

// What the two tools share beside the record tool's frame: guards, then the state written
// in one bracket with the rental state.
class FwHdStatusTool : public RecordTool {
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
  std::string FailurePrefix() const override { return Say().failure; }
  // The steps of both tools on the contract ID as SQL: the refusals, the unit and room, then
  // the state and the rental state in one bracket.
  bool Steps(IHostDatabase& db, const std::string& id) override;
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
