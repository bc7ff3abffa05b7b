// The database object the module sees (IHostDatabase): statements go through the rewriter to
// the connection; every failure lands in Error().Description() and nothing throws into the
// module.
#pragma once

#include <memory>
#include <string>

#include "kvhost/db/connection.h"
#include "kvhost/db/sql_rewriter.h"
#include "kvhost/lib/key_source.h"
#include "mrvk/frame/host_contract.h"

namespace kvhost::db {

class Database : public mrvk::IHostDatabase, public IKeySource {
 public:
  explicit Database(std::unique_ptr<Connection> connection);

  // IHostDatabase
  std::unique_ptr<mrvk::IHostCommand> CreateCommand(const std::string& sql,
                                                    int command_type) override;
  bool Release() override { return true; }
  void BeginTrans() override;
  void CommitTrans() override;
  void RollbackTrans() override;
  // Asks the engine, so a bracket that a failed BeginTrans or a spoiled statement left open
  // is still seen.
  bool InTransaction() const override { return connection_->InTransaction(); }
  const mrvk::IHostError& Error() const override { return error_; }
  const mrvk::IHostProperties& Properties() const override { return properties_; }

  // The host's own access, with the same error reporting.
  Connection& connection() { return *connection_; }
  Dialect dialect() const { return connection_->dialect(); }
  // Rewrites and runs one statement; false with Error() set on failure.
  bool Execute(const std::string& sql, int64_t* rows_affected = nullptr);
  bool Query(const std::string& sql, ResultSet& out);
  // A new key, with the failure text in the result ("" on success), as NewID gives it.
  std::string NewId(const std::string& table, const std::string& column, int32_t& id);
  void SetError(std::string text) { error_.text = std::move(text); }

  // IKeySource
  std::string NewKey(const std::string& table, const std::string& column, int32_t& id) override {
    return NewId(table, column, id);
  }

 private:
  struct ErrorText : mrvk::IHostError {
    std::string text;
    std::string Description() const override { return text; }
  };
  struct Props : mrvk::IHostProperties {
    std::string driver;
    mrvk::IHostProperty Item(const std::string& name) const override;
  };
  bool Prepare(const std::string& sql, RewrittenSql& out);

  std::unique_ptr<Connection> connection_;
  SqlRewriter rewriter_;
  ErrorText error_;
  Props properties_;
};

// Opens a database URL (see OpenConnection). Null and error set on failure.
std::unique_ptr<Database> OpenDatabase(const std::string& url, std::string& error);

}  // namespace kvhost::db
