#include "kvhost/web/user_store.h"

#include "mrvk/frame/data_access.h"

namespace kvhost::web {
namespace {

std::string Quoted(const std::string& text) { return mrvk::SqlQuoted(text); }

bool ToFlag(const mrvk::Variant& v) { return !v.IsNull() && !v.IsEmpty() && v.ToDouble() != 0; }

// Counts the UTF-8 characters of a text.
size_t Characters(const std::string& text) {
  size_t n = 0;
  for (unsigned char c : text) n += (c & 0xC0) != 0x80;
  return n;
}

}  // namespace

std::string PasswordProblem(const std::string& password) {
  if (Characters(password) < kMinPasswordLength)
    return "a password has at least " + std::to_string(kMinPasswordLength) + " characters";
  if (password.size() > kMaxPasswordLength)
    return "a password has at most " + std::to_string(kMaxPasswordLength) + " bytes";
  return "";
}

std::string UserNameProblem(const std::string& name) {
  if (name.empty()) return "a user name is not empty";
  if (Characters(name) > kMaxUserNameLength)
    return "a user name has at most " + std::to_string(kMaxUserNameLength) + " characters";
  if (name.front() == ' ' || name.back() == ' ') return "a user name has no blanks around it";
  for (unsigned char c : name) {
    if (c < 0x20 || c == 0x7F) return "a user name has no control characters";
  }
  return "";
}

Status UserStore::Add(const std::string& name, const std::string& password, bool must_change) {
  if (std::string why = UserNameProblem(name); !why.empty()) return Status::Error(why);
  if (std::string why = PasswordProblem(password); !why.empty()) return Status::Error(why);
  const std::string hash = HashPassword(password, iterations_);
  std::lock_guard lock(mu_);
  db::ResultSet rs;
  if (!db_.Query("select count(*) from xt_user where username=" + Quoted(name), rs))
    return Status::Error(db_.Error().Description());
  if (rs.rows() == 1 && rs.values[0].ToDouble() > 0)
    return Status::Error("the user \"" + name + "\" exists already");
  if (!db_.Execute("insert into xt_user (username,pwhash,disabled,mustchange) values (" +
                   Quoted(name) + "," + Quoted(hash) + ",0," + (must_change ? "1" : "0") + ")"))
    return Status::Error(db_.Error().Description());
  return Status::Ok();
}

Status UserStore::SetPassword(const std::string& name, const std::string& password,
                              bool must_change) {
  if (std::string why = PasswordProblem(password); !why.empty()) return Status::Error(why);
  const std::string hash = HashPassword(password, iterations_);
  std::lock_guard lock(mu_);
  int64_t rows = 0;
  if (!db_.Execute("update xt_user set pwhash=" + Quoted(hash) + ",mustchange=" +
                       (must_change ? "1" : "0") + " where username=" + Quoted(name),
                   &rows))
    return Status::Error(db_.Error().Description());
  if (rows == 0) return Status::Error("no user \"" + name + "\"");
  return Status::Ok();
}

Status UserStore::SetDisabled(const std::string& name, bool disabled) {
  std::lock_guard lock(mu_);
  int64_t rows = 0;
  if (!db_.Execute("update xt_user set disabled=" + std::string(disabled ? "1" : "0") +
                       " where username=" + Quoted(name),
                   &rows))
    return Status::Error(db_.Error().Description());
  if (rows == 0) return Status::Error("no user \"" + name + "\"");
  return Status::Ok();
}

bool UserStore::Find(const std::string& name, UserRecord& out, std::string& error) {
  std::lock_guard lock(mu_);
  db::ResultSet rs;
  if (!db_.Query(
          "select username,pwhash,disabled,mustchange from xt_user where username=" + Quoted(name),
          rs)) {
    error = db_.Error().Description();
    return false;
  }
  if (rs.rows() == 0) return false;
  out = {rs.values[0].ToString(), rs.values[1].ToString(), ToFlag(rs.values[2]),
         ToFlag(rs.values[3])};
  return true;
}

std::vector<UserRecord> UserStore::List(std::string& error) {
  std::lock_guard lock(mu_);
  db::ResultSet rs;
  std::vector<UserRecord> out;
  if (!db_.Query("select username,disabled,mustchange from xt_user order by username", rs)) {
    error = db_.Error().Description();
    return out;
  }
  for (size_t r = 0; r < rs.rows(); ++r)
    out.push_back({rs.values[r * 3].ToString(), "", ToFlag(rs.values[r * 3 + 1]),
                   ToFlag(rs.values[r * 3 + 2])});
  return out;
}

UserStore::Check UserStore::SignIn(const std::string& name, const std::string& password,
                                   UserRecord& out, std::string& error) {
  // A hash of nothing in particular, so that an unknown name takes as long as a known one.
  static const std::string decoy = HashPassword(RandomHex(16), iterations_);
  UserRecord user;
  const bool found = Find(name, user, error);
  if (!error.empty()) return Check::Failed;
  const bool match = VerifyPassword(password, found ? user.hash : decoy);
  if (!found || !match) return Check::Refused;
  if (user.disabled) return Check::Disabled;
  out = user;
  return Check::Ok;
}

Status UserStore::EnsureAdministrator(std::string& one_time_password) {
  one_time_password.clear();
  {
    std::lock_guard lock(mu_);
    db::ResultSet rs;
    if (!db_.Query("select count(*) from xt_user", rs))
      return Status::Error(db_.Error().Description());
    if (rs.rows() == 1 && rs.values[0].ToDouble() > 0) return Status::Ok();
  }
  const std::string password = RandomPassword();
  Status s = Add(kAdministrator, password, /*must_change=*/true);
  if (!s.ok()) return s;
  one_time_password = password;
  return Status::Ok();
}

}  // namespace kvhost::web
