// A bracket on the module's database that cannot be left open: BeginTrans when it is made,
// RollbackTrans when it goes out of scope unless Commit ran. A procedure with a bracket holds
// one, so a return or a run-time failure in the middle never keeps the write lock.
#pragma once

#include "mrvk/frame/host_contract.h"

namespace mrvk {

class Transaction {
 public:
  // Opens the bracket (BeginTrans); whether it opened is Open(), the reason
  // db.Error().Description().
  explicit Transaction(IHostDatabase& db);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  // True between a successful BeginTrans and Commit or Rollback.
  bool Open() const { return open_; }
  // CommitTrans. True when the changes stand; false when the bracket was not open or the
  // engine refused the commit (it then undid the bracket: the reason is in
  // db.Error().Description()).
  bool Commit();
  // RollbackTrans now, so that what follows (a failure message) runs after the undo. Does
  // nothing when the bracket is no longer open.
  void Rollback();

 private:
  IHostDatabase& db_;
  bool open_ = false;
};

}  // namespace mrvk
