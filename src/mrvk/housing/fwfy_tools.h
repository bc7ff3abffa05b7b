// The validity tools of a housing unit, run by the host on the unit in hand: cFwFy_finish
// withdraws the unit (出租状态 "已失效"), so it takes part in no approval; cFwFy_unfinish brings
// it back as "未出租". Each writes one statement and leaves the rooms as they are.
#pragma once

#include <memory>
#include <string>

#include "mrvk/frame/record_tool.h"

namespace mrvk {

// What the two tools share beside the record tool's frame: a run-time failure reads
// "设置失效出错::" in both.
class FwFyValidityTool : public RecordTool {
 protected:
  std::string FailurePrefix() const override { return "设置失效出错::"; }
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
