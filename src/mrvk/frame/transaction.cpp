#include "mrvk/frame/transaction.h"

namespace mrvk {

Transaction::Transaction(IHostDatabase& db) : db_(db) {
  db_.BeginTrans();
  open_ = db_.Error().Description().empty();
}

Transaction::~Transaction() { Rollback(); }

bool Transaction::Commit() {
  if (!open_) return false;
  open_ = false;
  db_.CommitTrans();
  return db_.Error().Description().empty();
}

void Transaction::Rollback() {
  if (!open_) return;
  open_ = false;
  db_.RollbackTrans();
}

}  // namespace mrvk
