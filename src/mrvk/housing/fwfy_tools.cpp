#include "mrvk/housing/fwfy_tools.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/document_sheet.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

bool cFwFy_finish::Steps(IHostDatabase& db, const std::string& id) {
  // A contract in force on the unit must be ended first.
  if (Val(ScalarText(db,
                     " SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID"
                     "  where fwhdmx.房源ID=" +
                         id + " and smark='02' and 状态='生效'")) > 0) {
    MsgBox("该房源，还有未终止的租房合同，请先将租房合同终止，再来设置房源失效!",
           msgbox::kExclamation, "操作提示");
    return false;
  }
  if (Val(ScalarText(
          db, " select 房源ID from fwfy where 房源ID=" + id + " and 出租状态='已失效'")) > 0) {
    MsgBox("该房源已设置失效,不能再次设置!", msgbox::kInformation, "操作提示");
    return false;
  }
  db.CreateCommand(
        " update fwfy"
        "   set 出租状态='已失效'"
        "  where 房源ID=" +
            id,
        1)
      ->Execute();
  if (const std::string error = db.Error().Description(); !error.empty()) {
    ReportFailure("设置失效出错::", error);
    return false;
  }
  MsgBox("该房源已设置为[已失效]状态！", msgbox::kInformation, "提示：");
  return true;
}

bool cFwFy_unfinish::Steps(IHostDatabase& db, const std::string& id) {
  if (Val(ScalarText(
          db, " select 房源ID from fwfy where 房源ID=" + id + " and 出租状态<>'已失效'")) > 0) {
    MsgBox("该房源已设置未失效,不能再次设置!", msgbox::kInformation, "操作提示");
    return false;
  }
  // The rooms keep their 是否出租: only the unit's state is set.
  db.CreateCommand(
        " update fwfy"
        "   set 出租状态='未出租'"
        "  where 房源ID=" +
            id,
        1)
      ->Execute();
  if (const std::string error = db.Error().Description(); !error.empty()) {
    ReportFailure("取消设置失效出错::", error);
    return false;
  }
  MsgBox("该房源已设置为[未出租]状态！", msgbox::kInformation, "提示：");
  return true;
}

std::unique_ptr<ModuleObject> NewcFwFy_finish() { return std::make_unique<cFwFy_finish>(); }
std::unique_ptr<ModuleObject> NewcFwFy_unfinish() { return std::make_unique<cFwFy_unfinish>(); }

}  // namespace mrvk
