// BillData: the helper a sheet creates in Init for keys and record navigation.
#pragma once

#include "mrvk/frame/host_contract.h"

namespace kvhost {

class BillData : public mrvk::IHostBillData {
 public:
  void Database(mrvk::IHostDatabase* db) override { db_ = db; }
  // The key comes from the database's key source (IKeySource); a database without one, or
  // no database at all, gives a failure text.
  std::string NewID(const std::string& table, const std::string& key_column, int32_t& id) override;
  // The statement is read as a derived table, so the filter, find text and key name the
  // statement's output columns without table prefixes. position gets "n/total".
  mrvk::Variant Navigate(std::string& position, std::unique_ptr<mrvk::Recordset>& rs,
                         const std::string& select_sql, const std::string& filter, int direction,
                         int32_t current_id, const std::string& key_column, int flag) override;
  mrvk::Variant Locate(std::string& position, std::unique_ptr<mrvk::Recordset>& rs,
                       const std::string& select_sql, const std::string& filter,
                       const std::string& find_text, const std::string& key_column) override;
  std::string DateText(const std::string& date_text) override;

  // The statement whose rows the position ("n/total") of the next Navigate and Locate calls
  // counts, in place of their load statement; "" counts the load statement's rows. A sheet
  // gives its record table alone when no filter names a joined column: its rows are the
  // records one to one, and counting them spares the joins.
  void CountFrom(std::string count_sql) { count_sql_ = std::move(count_sql); }

 private:
  // Opens "select top 1 * from (select_sql) q where conditions order by key" into rs and
  // fills position; Null when there is no such row. walk_key (extra names the key alone, as
  // Navigate's do) finds the key over the counted statement first when one is given.
  mrvk::Variant OpenOne(std::string& position, std::unique_ptr<mrvk::Recordset>& rs,
                        const std::string& select_sql, const std::string& filter,
                        const std::string& extra, const std::string& key_column, bool descending,
                        bool walk_key);

  mrvk::IHostDatabase* db_ = nullptr;
  std::string count_sql_;
};

}  // namespace kvhost
