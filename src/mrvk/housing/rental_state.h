// The rental-state rule: the one procedure that derives a housing unit's state
// (fwfy.出租状态) and its rooms' let flags (fwfy_fz.是否出租) from the contracts in force
// (smark '02', 状态 '生效'). Contract approval, un-approval, the contract status tools and the
// receipts run it as a step of their own operation.
#pragma once

#include <cstdint>
#include <string>

#include "mrvk/frame/host_contract.h"

namespace mrvk {

// RecalcRentalState(房源ID, 分租房间): with a room named, first sets that room's 是否出租 (1
// while a contract in force holds it, else 0; every room of the unit bearing that number).
// Then the unit: "已出租" while a whole-unit contract (no room) is in force; otherwise, over
// its rooms, "未出租" with no room or none let, "部分出租" with some free, "已出租" with all
// let. Opens no transaction. Returns "" on success, or the database's text of the first
// statement that failed (the statements before it stand; the caller reports it in its own
// words and decides about its bracket).
std::string RecalcRentalState(IHostDatabase& db, int32_t unit_id, const std::string& room);

}  // namespace mrvk
