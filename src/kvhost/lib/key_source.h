// What BillData needs of the database object beyond IHostDatabase: a source of new keys
// that is safe against concurrent callers. The host's database object implements it.
#pragma once

#include <cstdint>
#include <string>

namespace kvhost {

class IKeySource {
 public:
  virtual ~IKeySource() = default;
  // A new unused key of table/column into id; "" on success, the failure text otherwise.
  virtual std::string NewKey(const std::string& table, const std::string& column, int32_t& id) = 0;
};

}  // namespace kvhost
