#include "kvhost/lib/bill_data.h"

#include "kvhost/lib/key_source.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

// The key's name in the derived table: a table prefix ("FwHd.合同ID") is dropped.
std::string Unqualified(const std::string& key) {
  const size_t dot = key.rfind('.');
  return dot == std::string::npos ? key : key.substr(dot + 1);
}

std::string Where(const std::string& filter, const std::string& extra) {
  std::string w;
  if (!mrvk::Trim(filter).empty()) w = "(" + filter + ")";
  if (!mrvk::Trim(extra).empty()) w += (w.empty() ? "" : " and ") + ("(" + extra + ")");
  return w.empty() ? "" : " where " + w;
}

}  // namespace

std::string BillData::NewID(const std::string& table, const std::string& key_column, int32_t& id) {
  auto* keys = dynamic_cast<IKeySource*>(db_);
  if (!keys) return "NewID: no database with a key source";
  return keys->NewKey(table, key_column, id);
}

mrvk::Variant BillData::OpenOne(std::string& position, std::unique_ptr<mrvk::Recordset>& rs,
                                const std::string& select_sql, const std::string& filter,
                                const std::string& extra, const std::string& key_column,
                                bool descending, bool walk_key) {
  if (!db_) return mrvk::Variant("no database");
  const std::string key = Unqualified(key_column);
  const std::string from = " from (" + select_sql + ") q";
  if (walk_key && !count_sql_.empty()) {
    // The next, previous, first or last record by its key is the least or greatest key of
    // the record table alone under the filter: an engine finds it by walking an index on the
    // key from the current one, where the load statement's "top 1 ... order by key" under a
    // range filter (a sheet's date span) makes SQLite read the whole range through the
    // range's index, join every row and sort. The record is then read by its key.
    const mrvk::Variant found =
        db_->CreateCommand(std::string("select ") + (descending ? "max(" : "min(") + key + ")" +
                               " from (" + count_sql_ + ") q" + Where(filter, extra),
                           1)
            ->ExecuteScalar();
    if (!db_->Error().Description().empty()) return mrvk::Variant(db_->Error().Description());
    if (found.IsNull()) {
      rs.reset();
      return mrvk::Variant::Null();
    }
    const std::string at = key + "=" + found.ToString();
    rs = db_->CreateCommand(
                "select top 1 *" + from +
                    Where(filter, mrvk::Trim(extra).empty() ? at : "(" + extra + ") and " + at),
                1)
             ->OpenRecordset();
    if (!db_->Error().Description().empty()) return mrvk::Variant(db_->Error().Description());
    // A record the load statement does not show (no row of a joined table it needs) is passed
    // over as before.
    if (rs->Eof()) return OpenOne(position, rs, select_sql, filter, extra, key, descending, false);
  } else {
    rs = db_->CreateCommand("select top 1 *" + from + Where(filter, extra) + " order by " + key +
                                (descending ? " desc" : ""),
                            1)
             ->OpenRecordset();
    if (!db_->Error().Description().empty()) return mrvk::Variant(db_->Error().Description());
    if (rs->Eof()) return mrvk::Variant::Null();
  }
  const std::string found = rs->Fields(key).Value.ToString();
  const std::string counted = count_sql_.empty() ? from : " from (" + count_sql_ + ") q";
  // Both numbers in one pass over the counted rows: the rows up to the record's key among all.
  auto counts = db_->CreateCommand("select count(*), count(case when " + key + "<=" + found +
                                       " then 1 end)" + counted + Where(filter, ""),
                                   1)
                    ->OpenRecordset();
  if (!db_->Error().Description().empty()) return mrvk::Variant(db_->Error().Description());
  if (counts->Eof()) return mrvk::Variant("no count");
  position = counts->Fields(1).Value.ToString() + "/" + counts->Fields(0).Value.ToString();
  return mrvk::Variant(std::string());
}

mrvk::Variant BillData::Navigate(std::string& position, std::unique_ptr<mrvk::Recordset>& rs,
                                 const std::string& select_sql, const std::string& filter,
                                 int direction, int32_t current_id, const std::string& key_column,
                                 int) {
  const std::string key = Unqualified(key_column);
  const std::string id = std::to_string(current_id);
  switch (direction) {
    case mrvk::navigate::kFirst:
      return OpenOne(position, rs, select_sql, filter, "", key, /*descending=*/false, true);
    case mrvk::navigate::kPrevious:
      return OpenOne(position, rs, select_sql, filter, key + "<" + id, key, /*descending=*/true,
                     true);
    case mrvk::navigate::kNext:
      return OpenOne(position, rs, select_sql, filter, key + ">" + id, key, /*descending=*/false,
                     true);
    case mrvk::navigate::kLast:
      return OpenOne(position, rs, select_sql, filter, "", key, /*descending=*/true, true);
    default:
      return mrvk::Variant("Navigate: unknown direction " + std::to_string(direction));
  }
}

mrvk::Variant BillData::Locate(std::string& position, std::unique_ptr<mrvk::Recordset>& rs,
                               const std::string& select_sql, const std::string& filter,
                               const std::string& find_text, const std::string& key_column) {
  return OpenOne(position, rs, select_sql, filter, find_text, key_column, /*descending=*/false,
                 /*walk_key=*/false);
}

std::string BillData::DateText(const std::string& date_text) {
  auto d = mrvk::ParseDate(date_text);
  return d ? d->ToText() : std::string();
}

}  // namespace kvhost
