#include "kvhost/db/database.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "mrvk/frame/vb.h"

namespace kvhost::db {
namespace {

bool SameName(const std::string& a, const std::string& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

// A recordset over rows read in full; fields found by name without regard to case.
class MemoryRecordset : public mrvk::Recordset {
 public:
  explicit MemoryRecordset(ResultSet rows) : rows_(std::move(rows)), count_(rows_.rows()) {
    fields_.resize(rows_.columns.size());
    for (size_t c = 0; c < fields_.size(); ++c) fields_[c].Name = rows_.columns[c];
    Load();
  }
  bool Eof() const override { return pos_ >= rows_.rows(); }
  bool Bof() const override { return count_ == 0; }
  void MoveNext() override {
    if (Eof())
      throw mrvk::VbError(3021,
                          "Either BOF or EOF is True, or the current record has been deleted.");
    ++pos_;
    Load();
  }
  void MoveFirst() override {
    pos_ = 0;
    Load();
  }
  int FieldCount() const override { return static_cast<int>(fields_.size()); }
  const mrvk::Field& Fields(int index) const override {
    if (index < 0 || index >= FieldCount())
      throw mrvk::VbError(mrvk::vb_error::kItemNotFound,
                          "Item cannot be found in the collection corresponding to the "
                          "requested name or ordinal.");
    CheckRow();
    return fields_[static_cast<size_t>(index)];
  }
  const mrvk::Field& Fields(const std::string& name) const override {
    for (const mrvk::Field& f : fields_) {
      if (SameName(f.Name, name)) {
        CheckRow();
        return f;
      }
    }
    throw mrvk::VbError(mrvk::vb_error::kItemNotFound,
                        "Item cannot be found in the collection corresponding to the requested "
                        "name or ordinal.");
  }
  mrvk::RowsArray GetRows() override {
    mrvk::RowsArray a;
    a.fields = rows_.columns.size();
    if (pos_ == 0) {
      // All rows: the array takes the values over without a copy; the recordset is at its
      // end and keeps its count.
      a.rows = rows_.rows();
      a.cells = std::move(rows_.values);
      rows_.values.clear();
    } else if (pos_ < rows_.rows()) {
      a.rows = rows_.rows() - pos_;
      a.cells.assign(
          std::make_move_iterator(rows_.values.begin() + static_cast<ptrdiff_t>(pos_ * a.fields)),
          std::make_move_iterator(rows_.values.end()));
    }
    pos_ = rows_.rows();
    return a;
  }
  int64_t RecordCount() const override { return static_cast<int64_t>(count_); }
  void Close() override {}

 private:
  void CheckRow() const {
    if (Eof())
      throw mrvk::VbError(3021,
                          "Either BOF or EOF is True, or the current record has been deleted.");
  }
  void Load() {
    if (Eof()) return;
    const size_t n = fields_.size();
    for (size_t c = 0; c < n; ++c) fields_[c].Value = rows_.values[pos_ * n + c];
  }
  ResultSet rows_;
  size_t count_;  // the rows read, also after GetRows took them
  std::vector<mrvk::Field> fields_;
  size_t pos_ = 0;
};

class Command : public mrvk::IHostCommand {
 public:
  Command(Database& db, std::string sql) : db_(db), sql_(std::move(sql)) {}
  void Execute() override { db_.Execute(sql_); }
  mrvk::Variant ExecuteScalar() override {
    ResultSet rs;
    if (!db_.Query(sql_, rs) || rs.rows() == 0 || rs.columns.empty()) return mrvk::Variant();
    return rs.values[0];
  }
  std::unique_ptr<mrvk::Recordset> OpenRecordset() override {
    ResultSet rs;
    db_.Query(sql_, rs);
    return std::make_unique<MemoryRecordset>(std::move(rs));
  }

 private:
  Database& db_;
  std::string sql_;
};

}  // namespace

mrvk::IHostProperty Database::Props::Item(const std::string& name) const {
  if (SameName(name, "driver")) return {mrvk::Variant(driver)};
  return {};
}

Database::Database(std::unique_ptr<Connection> connection)
    : connection_(std::move(connection)), rewriter_(connection_->dialect(), SchemaColumnTypes()) {
  properties_.driver = connection_->dialect() == Dialect::Sqlite ? "jet" : "postgresql";
}

std::unique_ptr<mrvk::IHostCommand> Database::CreateCommand(const std::string& sql, int) {
  return std::make_unique<Command>(*this, sql);
}

bool Database::Prepare(const std::string& sql, RewrittenSql& out) {
  std::string why;
  if (!rewriter_.Rewrite(sql, out, why)) {
    error_.text = "SQL not accepted: " + why;
    return false;
  }
  return true;
}

bool Database::Execute(const std::string& sql, int64_t* rows_affected) {
  RewrittenSql stmt;
  if (!Prepare(sql, stmt)) return false;
  if (stmt.is_select) {
    error_.text = "SQL not accepted: Execute runs INSERT, UPDATE or DELETE, not SELECT";
    return false;
  }
  Status s = connection_->Execute(stmt, rows_affected);
  error_.text = s.message();
  return s.ok();
}

bool Database::Query(const std::string& sql, ResultSet& out) {
  RewrittenSql stmt;
  if (!Prepare(sql, stmt)) return false;
  if (!stmt.is_select) {
    error_.text = "SQL not accepted: only a SELECT yields rows";
    return false;
  }
  Status s = connection_->Query(stmt, out);
  error_.text = s.message();
  return s.ok();
}

void Database::BeginTrans() {
  Status s = connection_->Begin();
  error_.text = s.message();
}

void Database::CommitTrans() {
  Status s = connection_->Commit();
  error_.text = s.message();
}

void Database::RollbackTrans() {
  Status s = connection_->Rollback();
  error_.text = s.message();
}

std::string Database::NewId(const std::string& table, const std::string& column, int32_t& id) {
  Status s = connection_->NewId(table, column, id);
  error_.text = s.message();
  return s.message();
}

std::unique_ptr<Database> OpenDatabase(const std::string& url, std::string& error) {
  auto conn = OpenConnection(url, error);
  if (!conn) return nullptr;
  return std::make_unique<Database>(std::move(conn));
}

}  // namespace kvhost::db
