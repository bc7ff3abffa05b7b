// The rooms of a housing unit on the page PicFZ of the housing sheet: kvGridF, the rooms
// (fwfy_fz) with the contract in force on each, and kvGridZ, the whole-unit contracts in
// force. A let room is locked in the grid and cannot be deleted; a stored room deleted in
// the grid is queued and deleted with the save; a row without a room number is never
// written; the sheet never writes 是否出租 (the rental-state rule does).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/kv_grid.h"
#include "kvhost/lib/simple_controls.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {

class FyRooms {
 public:
  // The columns of kvGridF.
  static constexpr int kColRoom = 1;
  static constexpr int kColArea = 2;
  static constexpr int kColRent = 3;
  static constexpr int kColLet = 4;
  static constexpr int kColAutoID = 9;

  // Adds the frames and grids to the screen, inside the page `page`.
  void AddTo(kvhost::ControlList& controls, const std::string& page);
  // InitVsControl: lays out both grids, the read-only columns in the host's read-only
  // colours. A failure is reported by `report` with "加载VS时出错，原因：" + its text.
  void InitVsControl(IHostContext& context, const std::function<void(const std::string&)>& report);
  // Fills both grids for the unit and empties the list of rooms to delete. A failed
  // statement is reported by `report` and ends the load with the grids as they stand.
  void Load(IHostContext& context, int32_t unit_id,
            const std::function<void(const std::string&)>& report);
  // Both grids cut to their fixed rows (a new record, a cleared form).
  void ClearGrids();
  // The grids take edits while the sheet edits.
  void SetEditable(bool editing);
  // Starts an edit of the shown unit: the list of rooms to delete is emptied.
  void ForgetDeletions() { deleted_ids_.clear(); }
  // Inside the save's bracket, after the unit's own row: the queued deletions, then each row
  // with a room number inserted (new) or updated (stored). False with the database's text in
  // `error` at the first failure (the caller rolls back); the queue stays as it was then.
  bool Save(IHostContext& context, IHostBillData& bill, int32_t unit_id, std::string& error);

  kvhost::Frame FraF{"FraF"};  // 分租房间设置及出租情况
  kvhost::Frame FraZ{"FraZ"};  // 整租情况
  kvhost::KvGrid kvGridF{"kvGridF"};
  kvhost::KvGrid kvGridZ{"kvGridZ"};

 private:
  // A row of kvGridF became current: locked when its room is let.
  void RowEntered(int row);
  // The grid asks before it deletes a row: a let room is refused, a stored one queued.
  void BeforeDelete(int row, bool& cancel);
  bool IsLet(int row) const;

  kvhost::Convert convert_;
  bool editing_ = false;
  std::string deleted_ids_;  // "12,15," the stored rooms deleted in the grid
};

}  // namespace mrvk
