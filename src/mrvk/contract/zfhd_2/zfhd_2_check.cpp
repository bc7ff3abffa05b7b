// The contract sheet's approval, un-approval and delete.
//
// Approval and un-approval run statement by statement without a bracket: what ran before a
// failure stands, and the next approval rebuilds the schedule from nothing. The delete runs
// its three statements in one bracket; the number goes back and the question is asked before
// it opens, since no box waits inside a bracket.
#include <optional>

#include "mrvk/contract/schedule.h"
#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/transaction.h"
#include "mrvk/frame/vb.h"
#include "mrvk/housing/rental_state.h"

namespace mrvk {
namespace {

constexpr const char* kTag = "ZFHT";
constexpr int kCommandText = 1;
constexpr const char* kNoticeTitle = "操作提示";
constexpr const char* kDeleteTitle = "提示:";

// Runs one statement; the database's error text ("" when it ran).
std::string RunStatement(IHostDatabase& db, const std::string& sql) {
  db.CreateCommand(sql, kCommandText)->Execute();
  return db.Error().Description();
}

// The date a field holds, as the schedule and the number release read it; a text that is no
// date is VB's "Type mismatch" of CDate.
Date FieldDate(const kvhost::KvTxt& field) {
  const std::optional<Date> date = ParseDate(field.Text);
  if (!date) throw VbError(vb_error::kTypeMismatch, "Type mismatch");
  return *date;
}

// The statement that moves a contract between approved and not approved: the mark, the state,
// the system word and who did it on which day. smark carries its own separator, as the two
// statements differ there by a blank.
std::string MarkStatement(IHostContext& context, int32_t prog_id, int32_t id,
                          const std::string& smark, const std::string& state,
                          const std::string& system) {
  IHostDatabase& db = context.Database();
  return " Update fwhd Set progID=" + std::to_string(prog_id) + ",smark=" + smark +
         " 状态=" + SqlQuoted(state) + ", 审核人=" + SqlQuoted(context.Environment().UserName()) +
         ", 审核日期=" + DateLiteral(db, context.Environment().LoginDate()) +
         ", 系统=" + SqlQuoted(system) + " Where 合同ID=" + std::to_string(id);
}

}  // namespace

bool zfHd_2::IsCanCheck() {
  if (Val(kvTxt[6].Text) == 0) {
    MsgBox("请输入付租月份!", msgbox::kInformation, kNoticeTitle);
    return false;
  }
  struct Required {
    int index;
    const char* refusal;
  };
  static constexpr Required kRequired[] = {{8, "起租日期为空，不能审核！"},
                                           {1, "止租日期为空，不能审核！"},
                                           {0, "租赁期为空，不能审核！"},
                                           {44, "付租方式为空，不能审核！"}};
  for (const Required& r : kRequired) {
    if (kvTxt[r.index].Text.empty()) {
      ErrMessage(r.refusal, err_level::kValidation, kApplicationTitle);
      return false;
    }
  }
  IHostDatabase& db = context_->Database();
  const std::string state = ScalarText(
      db, " select 出租状态 from fwfy where 房源ID=" + NumberText(Val(kvTxt[18].Value.ToString())));
  if (const std::string error = db.Error().Description(); !error.empty()) {
    MsgBox("Check Error::" + error, msgbox::kCritical, kApplicationTitle);
    return false;
  }
  if (state == "已失效") {
    ErrMessage("该房源已经设置为[已失效]，不能审核与之相关的单据！", err_level::kValidation,
               kApplicationTitle);
    return false;
  }
  return true;
}

bool zfHd_2::Check() {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  const auto failed = [&](const std::string& error) {
    MsgBox("Check Error::" + error, msgbox::kCritical, kApplicationTitle);
    return false;
  };
  try {
    if (!IsCanCheck()) return false;
    const int32_t id = current_id_;
    if (std::string error =
            RunStatement(db, MarkStatement(*context_, prog_id_, id, "'02',", "生效", "审核"));
        !error.empty())
      return failed(error);
    // The schedule follows the lease as the sheet shows it.
    if (!BuildSchedule(db, *bill_, id, FieldDate(kvTxt[8]), FieldDate(kvTxt[1]),
                       Val(kvTxt[0].Text)))
      return failed(db.Error().Description());
    if (std::string error = RecalcRentalState(
            db, static_cast<int32_t>(Val(kvTxt[18].Value.ToString())), kvTxt[45].Text);
        !error.empty())
      return failed(error);
    return true;
  } catch (const VbError& e) {
    ErrMessage("审核时出错：" + e.Description(), err_level::kDatabase, kApplicationTitle);
    return false;
  }
}

bool zfHd_2::UnCheck() {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  const auto failed = [&](const char* tag, const std::string& error) {
    MsgBox(tag + error, msgbox::kCritical, kApplicationTitle);
    return false;
  };
  try {
    const int32_t id = current_id_;
    // Any receipt of the contract, of whatever kind and state, holds the approval.
    const double receipt =
        Val(ScalarText(db, " SELECT 合同ID from fwjs where  合同ID=" + std::to_string(id)));
    if (std::string error = db.Error().Description(); !error.empty())
      return failed("UnCheck::", error);
    if (receipt > 0) {
      MsgBox("该票租房合同，已经进行后续的租房收款单，不能再进行取消审核!", msgbox::kInformation,
             kNoticeTitle);
      return false;
    }
    if (std::string error =
            RunStatement(db, MarkStatement(*context_, prog_id_, id, "'01', ", "未生效", "填单"));
        !error.empty())
      return failed("UnCheck::", error);
    if (std::string error =
            RunStatement(db, " DELETE FROM fwhdfs_sk where 合同ID=" + std::to_string(id));
        !error.empty())
      return failed("Check Error::", error);
    if (std::string error = RecalcRentalState(
            db, static_cast<int32_t>(Val(kvTxt[18].Value.ToString())), kvTxt[45].Text);
        !error.empty())
      return failed("Check Error::", error);
    return true;
  } catch (const VbError& e) {
    return failed("UnCheck::", e.Description());
  }
}

bool zfHd_2::FileDelete() {
  if (current_id_ < 1) {
    MsgBox("没有可删除的记录!", msgbox::kInformation, kDeleteTitle);
    return false;
  }
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  std::optional<Transaction> tx;
  const auto report = [&](const std::string& text) {
    if (tx) tx->Rollback();
    ErrMessage(text, err_level::kDatabase, kApplicationTitle);
    return false;
  };
  try {
    // The number goes back before the question; answering no does not take it back.
    if (!context_->ReleaseBillCode(prog_id_, FieldDate(kvTxt[5]), kvTxt[2].Text)) return false;
    const bool yes = MsgBox("是否删除当前记录:", msgbox::kYesNo + msgbox::kQuestion,
                            kDeleteTitle) == msgbox::kYes;
    bool deleted = false;
    if (yes) {
      tx.emplace(db);
      if (!tx->Open()) return report(db.Error().Description());
      const std::string id = std::to_string(current_id_);
      for (const char* table : {"fwhd", "fwhdmx", "fwhdfs"}) {
        if (std::string error =
                RunStatement(db, std::string("Delete from ") + table + " where 合同ID=" + id);
            !error.empty())
          return report(error);
      }
      if (!tx->Commit()) return report(db.Error().Description());
      deleted = true;
    }
    // Either way the sheet goes on to the next contract.
    LoadData(navigate::kNext);
    return deleted;
  } catch (const VbError& e) {
    return report(std::string(kTag) + "-->DeleteData::" + e.Description());
  }
}

}  // namespace mrvk
