// Procedures the master sheets and their entry dialogs share.
#pragma once

#include <cstdint>
#include <string>

#include "kvhost/lib/control_list.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {

// SetEditable(flag): text boxes, fields, combo boxes and check boxes take Enabled = flag;
// trees and list views the opposite, so a person either edits the fields or browses.
void SetEditable(kvhost::ControlList& controls, bool flag);

// Runs "delete from <table> where <key_column>=<id>" outside a transaction and releases the
// connection. Returns "" on success, else the database's error text (nothing deleted then).
std::string DeleteRow(IHostDatabase& db, const std::string& table, const std::string& key_column,
                      int32_t id);

}  // namespace mrvk
