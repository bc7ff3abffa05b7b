#include "mrvk/frame/record_tool.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/document_sheet.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

bool RecordTool::Init(IHostContext& context, int32_t& progID, int32_t& record_id) {
  context_ = &context;
  prog_id_ = progID;
  id_ = record_id;
  return true;
}

bool RecordTool::Clear() {
  context_ = nullptr;
  return true;
}

bool RecordTool::Action(int32_t) {
  if (!context_) return false;
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  error_.clear();
  try {
    return Steps(db, SqlNumber(std::to_string(id_)));
  } catch (const VbError& e) {
    // A bracket the steps opened has been rolled back on the way out of them.
    ReportFailure(FailurePrefix(), e.Description());
    return false;
  }
}

void RecordTool::ReportFailure(const std::string& prefix, const std::string& text) {
  error_ = text;
  MsgBox(prefix + text, msgbox::kCritical, kApplicationTitle);
}

}  // namespace mrvk
