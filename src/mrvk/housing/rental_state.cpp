#include "mrvk/housing/rental_state.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

// Runs a statement; its error text ("" on success).
std::string Run(IHostDatabase& db, const std::string& sql) {
  db.CreateCommand(sql, 1)->Execute();
  return db.Error().Description();
}

}  // namespace

std::string RecalcRentalState(IHostDatabase& db, int32_t unit_id, const std::string& room) {
  const std::string id = std::to_string(unit_id);
  const std::string in_force =
      " SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID"
      "  where fwhdmx.房源ID=" +
      id;
  // 1. The room the contract at hand names.
  if (!room.empty()) {
    const bool held = Val(ScalarText(db, in_force + " and 分租房间=" + SqlQuoted(room) +
                                             "    and smark='02' and 状态='生效'")) > 0;
    if (std::string error = db.Error().Description(); !error.empty()) return error;
    if (std::string error =
            Run(db, std::string(" UPDATE fwfy_fz   set 是否出租=") + (held ? "1" : "0") +
                        "  where 房源ID=" + id + " and 房间号=" + SqlQuoted(room));
        !error.empty())
      return error;
  }
  // 2. A whole-unit contract in force.
  std::string state;
  const bool whole =
      Val(ScalarText(db, in_force + " and 分租房间='' and smark='02' and 状态='生效'")) > 0;
  if (std::string error = db.Error().Description(); !error.empty()) return error;
  if (whole) {
    state = "已出租";
  } else {
    // 3-4. The rooms: none or none let, some free, all let.
    int rooms = 0;
    int let = 0;
    {
      auto rs =
          db.CreateCommand(" select 是否出租 from fwfy_fz where 房源ID=" + id, 1)->OpenRecordset();
      if (std::string error = db.Error().Description(); !error.empty()) return error;
      for (; !rs->Eof(); rs->MoveNext()) {
        ++rooms;
        if (Val(rs->Fields(0).Value.ToString()) == 1) ++let;
      }
    }
    state = rooms == 0 || let == 0 ? "未出租" : let < rooms ? "部分出租" : "已出租";
  }
  return Run(db, " UPDATE fwfy     SET 出租状态=" + SqlQuoted(state) + "   WHERE 房源ID=" + id);
}

}  // namespace mrvk
