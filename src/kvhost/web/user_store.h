// The people who may sign in to the web client (host table xt_user): adding them, setting and
// checking their passwords, disabling them, and the administrator of a new installation.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "kvhost/db/database.h"
#include "kvhost/status.h"
#include "kvhost/web/password.h"

namespace kvhost::web {

inline constexpr size_t kMinPasswordLength = 8;
inline constexpr size_t kMaxPasswordLength = 256;
inline constexpr size_t kMaxUserNameLength = 32;
// The administrator a new installation gets.
inline constexpr const char* kAdministrator = "admin";

// Why a password cannot be used ("" when it can).
std::string PasswordProblem(const std::string& password);
// Why a text cannot be a user name ("" when it can): empty, too long, blanks around it,
// control characters.
std::string UserNameProblem(const std::string& name);

struct UserRecord {
  std::string name;
  std::string hash;
  bool disabled = false;
  bool must_change = false;
};

class UserStore {
 public:
  // The store works on its own connection; calls may come from several threads.
  UserStore(db::Database& database, int hash_iterations = kDefaultHashIterations)
      : db_(database), iterations_(hash_iterations) {}

  // Adds a person; refused when the name is taken or name or password are unusable.
  Status Add(const std::string& name, const std::string& password, bool must_change = false);
  // Sets a new password; clears the must-change mark unless must_change.
  Status SetPassword(const std::string& name, const std::string& password,
                     bool must_change = false);
  Status SetDisabled(const std::string& name, bool disabled);
  // The person, or false when there is none (error set when the database failed).
  bool Find(const std::string& name, UserRecord& out, std::string& error);
  std::vector<UserRecord> List(std::string& error);

  enum class Check { Ok, Refused, Disabled, Failed };
  // Checks name and password. An unknown name costs the same time as a wrong password.
  Check SignIn(const std::string& name, const std::string& password, UserRecord& out,
               std::string& error);

  // On a database without users: adds the administrator with a random password that must be
  // changed at the first sign-in, and gives that password (once; it is stored only hashed).
  // Empty when there are users already.
  Status EnsureAdministrator(std::string& one_time_password);

 private:
  db::Database& db_;
  int iterations_;
  std::mutex mu_;  // one statement at a time on the connection
};

}  // namespace kvhost::web
