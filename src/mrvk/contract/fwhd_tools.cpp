#include "mrvk/contract/fwhd_tools.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/document_sheet.h"
#include "mrvk/frame/transaction.h"
#include "mrvk/frame/vb.h"
#include "mrvk/housing/rental_state.h"

namespace mrvk {
namespace {

constexpr int kCommandText = 1;
constexpr const char* kNoticeTitle = "操作提示";
constexpr const char* kDoneTitle = "提示：";

// Whether a guard's read found the contract: its first value read as a number is above 0.
bool Found(IHostDatabase& db, const std::string& sql) { return Val(ScalarText(db, sql)) > 0; }

}  // namespace

bool FwHdStatusTool::ReadFailed(IHostDatabase& db) {
  const std::string error = db.Error().Description();
  if (error.empty()) return false;
  ReportFailure(Say().failure, error);
  return true;
}

bool FwHdStatusTool::Steps(IHostDatabase& db, const std::string& id) {
  if (Refused(db, id)) return false;
  // The unit and room the contract lets, for the rental state.
  const std::string unit = ScalarText(db, " SELECT 房源ID FROM fwhdmx where 合同ID=" + id);
  if (ReadFailed(db)) return false;
  const std::string room = ScalarText(db, " SELECT 分租房间 FROM fwhd where 合同ID=" + id);
  if (ReadFailed(db)) return false;
  if (UnitRefused(db, SqlNumber(unit))) return false;

  const Words words = Say();
  Transaction tx(db);
  if (!tx.Open()) {
    ReportFailure(words.failure, db.Error().Description());
    return false;
  }
  db.CreateCommand(std::string(" update fwhd") + "   set 状态=" + SqlQuoted(words.state) +
                       "  where 合同ID=" + id,
                   kCommandText)
      ->Execute();
  if (const std::string error = db.Error().Description(); !error.empty()) {
    // The report first, then the undo: the box is shown once the bracket is closed.
    ReportFailure(words.failure, error);
    tx.Rollback();
    return false;
  }
  // The contract in hand now counts (or no longer counts) as in force for its unit and room.
  if (const std::string error = RecalcRentalState(db, static_cast<int32_t>(Val(unit)), room);
      !error.empty()) {
    ReportFailure("Check Error::", error);
    tx.Rollback();
    return false;
  }
  if (!tx.Commit()) {
    ReportFailure(words.failure, db.Error().Description());
    return false;
  }
  MsgBox(words.done, msgbox::kInformation, kDoneTitle);
  return true;
}

FwHdStatusTool::Words cFwHd_finish::Say() const {
  return {"终止", "设置失效出错::", "该合同已设置为[终止]状态！"};
}

bool cFwHd_finish::Refused(IHostDatabase& db, const std::string& id) {
  // Only an approved contract can be ended; a contract no row bears reads as not approved.
  const std::string smark = ScalarText(db, "select smark from fwhd where 合同ID=" + id);
  if (ReadFailed(db)) return true;
  if (Trim(smark) != "02") {
    MsgBox("该合同未审核，不能设置终止", msgbox::kExclamation, kDoneTitle);
    return true;
  }
  const bool ended = Found(db, " select 合同ID from fwhd where 合同ID=" + id + " and 状态='终止'");
  if (ReadFailed(db)) return true;
  if (ended) {
    MsgBox("该合同已设置失效,不能再次设置!", msgbox::kInformation, kNoticeTitle);
    return true;
  }
  return false;
}

FwHdStatusTool::Words cFwHd_unfinish::Say() const {
  return {"生效", "取消设置失效出错::", "该合同已设置为[生效]状态！"};
}

bool cFwHd_unfinish::Refused(IHostDatabase& db, const std::string& id) {
  // Only an ended contract is set back; the approval mark is not read.
  const bool not_ended =
      Found(db, " select 合同ID from fwhd where 合同ID=" + id + " and 状态<>'终止'");
  if (ReadFailed(db)) return true;
  if (not_ended) {
    MsgBox("该合同没有被设置为失效,不能取消设置!", msgbox::kInformation, kNoticeTitle);
    return true;
  }
  return false;
}

bool cFwHd_unfinish::UnitRefused(IHostDatabase& db, const std::string& unit) {
  // A unit withdrawn while its contract was ended cannot be let again by setting it back.
  const std::string state = ScalarText(db, " select 出租状态 from fwfy where 房源ID=" + unit);
  if (ReadFailed(db)) return true;
  if (state == "已失效") {
    MsgBox("该房源已经设置为[已失效]，不能设置该合同状态！", msgbox::kInformation, kNoticeTitle);
    return true;
  }
  return false;
}

std::unique_ptr<ModuleObject> NewcFwHd_finish() { return std::make_unique<cFwHd_finish>(); }
std::unique_ptr<ModuleObject> NewcFwHd_unfinish() { return std::make_unique<cFwHd_unfinish>(); }

}  // namespace mrvk
