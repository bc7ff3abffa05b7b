#include "kvhost/web/web_app.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <condition_variable>
#include <cstdio>
#include <ctime>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>
#include <thread>

#include "kvhost/db/database.h"
#include "kvhost/host.h"
#include "kvhost/print_service.h"
#include "kvhost/protocol.h"
#include "kvhost/web/user_store.h"
#include "mrvk/frame/vb.h"
#include "mrvk/registry.h"

namespace kvhost::web {
namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;

constexpr size_t kTokenBytes = 32;

WebResponse Refuse(int status, const std::string& error) {
  return {status, {{"ok", false}, {"error", error}}, ""};
}

// True when the text holds a Chinese character: the sheets' own messages and the server's
// sign-in texts are written for the clerk; the rest is a developer's detail.
bool ForAClerk(const std::string& text) {
  for (size_t i = 0; i + 2 < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c >= 0xE3 && c <= 0xE9) return true;  // UTF-8 lead bytes of U+3000..U+9FFF
  }
  return false;
}

// A refused answer whose error is a developer's detail gets a sentence for the clerk in
// "message" (the client shows only that) and the detail goes to the server's log.
void ForTheClerk(const WebRequest& request, WebResponse& r) {
  if (!r.body.is_object() || r.body.value("ok", true)) return;
  const std::string error = r.body.value("error", std::string());
  if (error.empty() || ForAClerk(error)) return;
  std::fprintf(stderr, "mrvk serve: %s %s refused (%d): %s\n", request.method.c_str(),
               request.path.c_str(), r.status, error.c_str());
  std::fflush(stderr);
  const bool unbuilt = error.find("is not built yet") != std::string::npos;
  r.body["message"] = unbuilt ? "该功能尚未提供，请选择其他功能或联系系统管理员。"
                      : r.status >= 500
                          ? "服务器未能完成操作，请稍后重试；如仍不成功，请联系系统管理员。"
                          : "操作未能完成，请刷新页面后重试；如仍不成功，请联系系统管理员。";
}

std::string Today() {
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  return mrvk::Date::FromYmd(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday).ToText();
}

// The value of one cookie of a Cookie header; "" when it is not there.
std::string CookieValue(const std::string& header, const std::string& name) {
  size_t pos = 0;
  while (pos < header.size()) {
    size_t end = header.find(';', pos);
    if (end == std::string::npos) end = header.size();
    std::string pair = header.substr(pos, end - pos);
    const size_t first = pair.find_first_not_of(' ');
    pair = first == std::string::npos ? "" : pair.substr(first);
    const size_t eq = pair.find('=');
    if (eq != std::string::npos && pair.substr(0, eq) == name) return pair.substr(eq + 1);
    pos = end + 1;
  }
  return "";
}

std::string SessionCookie(const std::string& token, bool secure) {
  return std::string(kSessionCookie) + "=" + token + "; Path=/; HttpOnly; SameSite=Strict" +
         (secure ? "; Secure" : "");
}

std::string ExpiredCookie(bool secure) {
  return std::string(kSessionCookie) + "=; Path=/; Max-Age=0; HttpOnly; SameSite=Strict" +
         (secure ? "; Secure" : "");
}

bool StartsWithNoCase(const std::string& text, const std::string& prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(text[i])) != prefix[i]) return false;
  }
  return true;
}

// A member of a JSON object as a string; false when missing or not a string.
bool StringField(const json& body, const char* name, std::string& out) {
  auto it = body.find(name);
  if (it == body.end() || !it->is_string()) return false;
  out = it->get<std::string>();
  return true;
}

bool IntField(const json& body, const char* name, int64_t& out) {
  auto it = body.find(name);
  if (it == body.end() || !(it->is_number_integer() || it->is_number_unsigned())) return false;
  out = it->get<int64_t>();
  return true;
}

std::string KindName(const std::string& class_name) {
  const mrvk::ClassInfo* info = mrvk::FindClass(class_name);
  if (!info) return "sheet";  // classes of our own (the test screens) are sheets
  switch (info->kind) {
    case mrvk::ClassKind::Report:
      return "report";
    case mrvk::ClassKind::Tool:
      return "tool";
    case mrvk::ClassKind::Picker:
      return "picker";
    default:
      return "sheet";
  }
}

// The files a session may fetch: pages and exports its host made. The oldest are forgotten
// beyond this many.
constexpr size_t kMaxSessionFiles = 500;
constexpr const char* kFilePrefix = "/api/file/";

// A page shows in the client's own frame: its style is inline, it runs no script and loads
// nothing from elsewhere.
constexpr const char* kPagePolicy =
    "default-src 'none'; style-src 'unsafe-inline'; img-src 'self' data:; font-src 'self' data:; "
    "frame-ancestors 'self'; base-uri 'none'; form-action 'none'";

// "filename*" of a Content-Disposition: UTF-8, percent-encoded.
std::string EncodedFileName(const std::string& name) {
  static const char* kHex = "0123456789ABCDEF";
  std::string out = "UTF-8''";
  for (unsigned char ch : name) {
    if (std::isalnum(ch) || ch == '.' || ch == '-' || ch == '_') {
      out += static_cast<char>(ch);
    } else {
      out += '%';
      out += kHex[ch >> 4];
      out += kHex[ch & 15];
    }
  }
  return out;
}

// Failed sign-ins by name and by address; see WebConfig for the limits.
class SignInThrottle {
 public:
  explicit SignInThrottle(const WebConfig& config) : config_(config) {}

  // Whether a sign-in of the name from the address is refused now.
  bool Locked(const std::string& address, const std::string& name, Clock::time_point now) {
    std::lock_guard lock(mu_);
    auto locked = [now](const std::map<std::string, Strikes>& map, const std::string& key) {
      auto it = map.find(key);
      return it != map.end() && it->second.until > now;
    };
    return locked(by_name_, name) || locked(by_address_, address);
  }

  void Failed(const std::string& address, const std::string& name, Clock::time_point now) {
    std::lock_guard lock(mu_);
    Strike(by_name_[name], config_.failures_per_name, now);
    Strike(by_address_[address], config_.failures_per_address, now);
  }

  void Succeeded(const std::string& name) {
    std::lock_guard lock(mu_);
    by_name_.erase(name);
  }

  // Forgets the failures that no longer count.
  void Prune(Clock::time_point now) {
    std::lock_guard lock(mu_);
    for (auto* map : {&by_name_, &by_address_}) {
      std::erase_if(*map, [&](const auto& entry) { return Forgotten(entry.second, now); });
    }
  }

 private:
  struct Strikes {
    int failures = 0;
    Clock::time_point last;
    Clock::time_point until;
  };

  bool Forgotten(const Strikes& s, Clock::time_point now) const {
    return s.until <= now && now - s.last > config_.max_lock;
  }

  void Strike(Strikes& s, int limit, Clock::time_point now) const {
    if (Forgotten(s, now)) s.failures = 0;
    ++s.failures;
    s.last = now;
    if (s.failures < limit) return;
    auto lock = config_.first_lock;
    for (int i = limit; i < s.failures && lock < config_.max_lock; ++i) lock *= 2;
    s.until = now + std::min(lock, config_.max_lock);
  }

  const WebConfig& config_;
  std::mutex mu_;
  std::map<std::string, Strikes> by_name_;
  std::map<std::string, Strikes> by_address_;
};

// Whether the module can create the class now (classes come one by one).
bool Creatable(const std::string& class_name) {
  std::string error;
  return mrvk::CreateObject(class_name, error) != nullptr;
}

}  // namespace

// A file the session's host made: a print's page or an export.
struct SessionFile {
  std::string path;
  std::string name;  // the file's own name, for the download
};

// One signed-in browser: its own driver, and so its own interface thread and connection.
struct WebSession {
  std::string token;
  std::string csrf;
  std::string user;
  std::string login_date;
  std::string pwhash;  // as at sign-in; a change elsewhere ends the session
  bool must_change = false;
  // One request of the session at a time; the driver takes one request at a time.
  std::mutex mu;
  std::unique_ptr<ProtocolDriver> driver;
  std::set<int> screens;
  // The operation whose answer waits on a box ("open", "close", ...) and the screen it
  // names; "" when none.
  std::string waiting_op;
  int waiting_screen = 0;
  // The files its answers named, by the ID of their URL; oldest first in file_order.
  std::map<std::string, SessionFile> files;
  std::deque<std::string> file_order;
  // Read without the session's lock by the sweeper and by a sign-in choosing what to close.
  std::atomic<Clock::time_point> last_used = Clock::now();
  Clock::time_point last_checked = Clock::now();
};

class WebApp::Impl {
 public:
  explicit Impl(WebConfig config) : config_(std::move(config)), throttle_(config_) {}

  ~Impl() {
    {
      std::lock_guard lock(sweeper_mu_);
      stopping_ = true;
    }
    sweeper_cv_.notify_all();
    if (sweeper_.joinable()) sweeper_.join();
    std::map<std::string, std::shared_ptr<WebSession>> gone;
    {
      std::lock_guard lock(sessions_mu_);
      gone.swap(sessions_);
    }
  }

  Status Start(std::string& one_time_password) {
    std::string error;
    // Two connections of the server's own: the users', and the menu's.
    auto users_db = db::OpenDatabase(config_.database, error);
    if (!users_db) return Status::Error(error);
    database_ = db::OpenDatabase(config_.database, error);
    if (!database_) return Status::Error(error);
    // A new database gets its schema; an existing one is brought up to date.
    Host host({.database = config_.database,
               .user = kAdministrator,
               .login_date = "",
               .app_path = config_.app_path});
    if (!host.status().ok()) return host.status();
    if (Status s = host.create_schema(); !s.ok()) return s;
    users_db_ = std::move(users_db);
    users_ = std::make_unique<UserStore>(*users_db_, config_.hash_iterations);
    if (Status s = users_->EnsureAdministrator(one_time_password); !s.ok()) return s;
    SweepOldFiles(config_.app_path, config_.file_age);
    if (!sweeper_.joinable()) sweeper_ = std::thread([this] { SweepLoop(); });
    return Status::Ok();
  }

  WebResponse Handle(const WebRequest& req) {
    if (!users_) return Refuse(503, "the server is not started");
    const bool post = req.method == "POST";
    if (!post && req.method != "GET") return Refuse(405, "only GET and POST are answered");
    json body = json::object();
    if (post) {
      // A state-changing request comes from our own pages only: JSON, same origin.
      if (!req.origin.empty() && req.origin != "http://" + req.host &&
          req.origin != "https://" + req.host)
        return Refuse(403, "a request from another origin is refused");
      if (!StartsWithNoCase(req.content_type, "application/json"))
        return Refuse(415, "requests are JSON (Content-Type: application/json)");
      std::string error;
      if (!ParseRequest(req.body, body, error)) return Refuse(400, error);
      if (!body.is_object()) return Refuse(400, "a request is a JSON object");
    }
    const std::string& path = req.path;
    if (path == "/api/signin") return post ? SignIn(req, body) : Refuse(405, "use POST");
    auto route = [&](bool want_post) -> std::optional<WebResponse> {
      if (post != want_post) return Refuse(405, want_post ? "use POST" : "use GET");
      return std::nullopt;
    };
    const bool file = path.rfind(kFilePrefix, 0) == 0;
    if (path != "/api/session" && path != "/api/signout" && path != "/api/password" &&
        path != "/api/menu" && path != "/api/protocol" && !file)
      return Refuse(404, "no such API: " + path);
    if (auto r =
            route(path == "/api/signout" || path == "/api/password" || path == "/api/protocol"))
      return *r;

    std::shared_ptr<WebSession> session = FindSession(CookieValue(req.cookie, kSessionCookie));
    if (!session) {
      WebResponse r = Refuse(401, "未登录或登录已过期，请重新登录");
      if (!req.cookie.empty() && !CookieValue(req.cookie, kSessionCookie).empty())
        r.set_cookie = ExpiredCookie(config_.secure_cookie);
      return r;
    }
    if (post && !SameSecret(req.csrf, session->csrf))
      return Refuse(403,
                    std::string("the request token (") + kCsrfHeader + ") is missing or wrong");
    std::unique_lock lock(session->mu);
    session->last_used = Clock::now();
    if (!UserStillValid(*session)) {
      lock.unlock();
      EndSession(session->token);
      WebResponse r = Refuse(401, "登录已失效，请重新登录");
      r.set_cookie = ExpiredCookie(config_.secure_cookie);
      return r;
    }
    if (path == "/api/session") return {200, SessionJson(*session), ""};
    if (path == "/api/signout") {
      lock.unlock();
      EndSession(session->token);
      WebResponse r{200, {{"ok", true}}, ExpiredCookie(config_.secure_cookie)};
      return r;
    }
    if (path == "/api/password") return ChangePassword(*session, body);
    if (session->must_change) return Refuse(403, "请先修改初始密码");
    if (path == "/api/menu") return MenuAnswer();
    if (file) return ServeFile(*session, path.substr(std::string(kFilePrefix).size()));
    return Protocol(*session, body);
  }

  std::vector<MenuEntry> Menu(std::string& error) {
    std::vector<MenuEntry> out;
    {
      std::lock_guard lock(db_mu_);
      db::ResultSet rs;
      // The groups in the order of the road of a rent (a group not listed comes last), the
      // entries of a group by their order number.
      std::string group_rank = "case a.menugroup";
      int rank = 0;
      for (const char* group :
           {"基础资料", "房源管理", "合同管理", "收款管理", "报表", "提醒", "查询", "工具"})
        group_rank += " when '" + std::string(group) + "' then " + std::to_string(++rank);
      group_rank += " else " + std::to_string(++rank) + " end";
      if (!database_->Query("select a.progID,a.menuname,a.menugroup,a.sortno,b.classname from "
                            "xt_menu a inner join xt_objects b on a.progID=b.progID order by " +
                                group_rank + ",a.sortno,a.progID",
                            rs)) {
        error = database_->Error().Description();
        return out;
      }
      for (size_t r = 0; r < rs.rows(); ++r) {
        const mrvk::Variant* row = &rs.values[r * rs.columns.size()];
        out.push_back({static_cast<int32_t>(row[0].ToLong()), row[1].ToString(), row[2].ToString(),
                       row[4].ToString(), static_cast<int>(row[3].ToLong())});
      }
    }
    out.insert(out.end(), config_.extra_menu.begin(), config_.extra_menu.end());
    return out;
  }

  size_t SessionCount() const {
    std::lock_guard lock(sessions_mu_);
    return sessions_.size();
  }

 private:
  json SessionJson(const WebSession& s) const {
    return {{"ok", true},
            {"user", s.user},
            {"login_date", s.login_date},
            {"csrf", s.csrf},
            {"must_change", s.must_change}};
  }

  WebResponse SignIn(const WebRequest& req, const json& body) {
    std::string user, password, login_date;
    if (!StringField(body, "user", user) || !StringField(body, "password", password))
      return Refuse(400, "a sign-in names \"user\" and \"password\"");
    if (body.contains("login_date") && !body["login_date"].is_null() &&
        !StringField(body, "login_date", login_date))
      return Refuse(400, "\"login_date\" is a date text (yyyy-mm-dd)");
    if (login_date.empty()) {
      login_date = Today();
    } else {
      auto d = mrvk::ParseDate(login_date);
      if (!d) return Refuse(400, "登录日期不是有效日期：" + login_date);
      login_date = d->ToText();
    }
    // Refused without hashing while the name or the address is locked out. No user has a
    // longer name: the throttle keeps no more of it.
    const std::string counted = user.substr(0, kMaxUserNameLength * 4);
    if (throttle_.Locked(req.remote_address, counted, Clock::now()))
      return Refuse(429, "登录尝试过多，请稍后再试");
    UserRecord record;
    std::string error;
    switch (users_->SignIn(user, password, record, error)) {
      case UserStore::Check::Ok:
        throttle_.Succeeded(counted);
        break;
      case UserStore::Check::Refused:
        throttle_.Failed(req.remote_address, counted, Clock::now());
        return Refuse(401, "用户名或密码错误");
      case UserStore::Check::Disabled:
        return Refuse(403, "该用户已停用");
      case UserStore::Check::Failed:
        return Refuse(500, "cannot read the users: " + error);
    }
    // A new sign-in never reuses a session the browser had.
    if (std::string old = CookieValue(req.cookie, kSessionCookie); !old.empty()) EndSession(old);
    auto s = std::make_shared<WebSession>();
    s->token = RandomHex(kTokenBytes);
    s->csrf = RandomHex(kTokenBytes);
    s->user = record.name;
    s->login_date = login_date;
    s->pwhash = record.hash;
    s->must_change = record.must_change;
    std::vector<std::shared_ptr<WebSession>> closed;  // closed outside the lock
    {
      std::lock_guard lock(sessions_mu_);
      // A person has at most sessions_per_user: the least recently used ones go.
      std::vector<std::map<std::string, std::shared_ptr<WebSession>>::iterator> mine;
      for (auto it = sessions_.begin(); it != sessions_.end(); ++it) {
        if (it->second->user == s->user) mine.push_back(it);
      }
      std::sort(mine.begin(), mine.end(), [](const auto& a, const auto& b) {
        return a->second->last_used.load() < b->second->last_used.load();
      });
      for (size_t i = 0; i + config_.sessions_per_user <= mine.size(); ++i) {
        closed.push_back(std::move(mine[i]->second));
        sessions_.erase(mine[i]);
      }
      sessions_[s->token] = s;
    }
    return {200, SessionJson(*s), SessionCookie(s->token, config_.secure_cookie)};
  }

  WebResponse ChangePassword(WebSession& s, const json& body) {
    std::string old_password, new_password;
    if (!StringField(body, "old", old_password) || !StringField(body, "new", new_password))
      return Refuse(400, "a password change names \"old\" and \"new\"");
    UserRecord record;
    std::string error;
    if (users_->SignIn(s.user, old_password, record, error) != UserStore::Check::Ok)
      return Refuse(403, error.empty() ? "原密码不正确" : error);
    if (!PasswordProblem(new_password).empty())
      return Refuse(400, "新密码至少" + std::to_string(kMinPasswordLength) + "个字符");
    if (new_password == old_password) return Refuse(400, "新密码不能与原密码相同");
    if (Status st = users_->SetPassword(s.user, new_password); !st.ok())
      return Refuse(500, st.message());
    if (!users_->Find(s.user, record, error)) return Refuse(500, "cannot read the user: " + error);
    s.pwhash = record.hash;
    s.must_change = false;
    return {200, SessionJson(s), ""};
  }

  WebResponse MenuAnswer() {
    std::string error;
    std::vector<MenuEntry> entries = Menu(error);
    if (!error.empty()) return Refuse(500, "cannot read the menu: " + error);
    // Groups in the order of their first function key; entries by their order number.
    std::vector<std::string> order;
    std::map<std::string, std::vector<MenuEntry>> groups;
    for (const MenuEntry& e : entries) {
      if (!groups.count(e.group)) order.push_back(e.group);
      groups[e.group].push_back(e);
    }
    std::map<std::string, bool> ready;
    json out = json::array();
    for (const std::string& g : order) {
      auto& list = groups[g];
      std::stable_sort(list.begin(), list.end(), [](const MenuEntry& a, const MenuEntry& b) {
        return a.sortno != b.sortno ? a.sortno < b.sortno : a.progID < b.progID;
      });
      json items = json::array();
      for (const MenuEntry& e : list) {
        if (!ready.count(e.class_name)) ready[e.class_name] = Creatable(e.class_name);
        json item = {{"progID", e.progID},
                     {"name", e.name},
                     {"class", e.class_name},
                     {"kind", KindName(e.class_name)},
                     {"ready", ready[e.class_name]}};
        // A tool on one record is also offered on the sheets that show such records.
        if (const ToolPlace* place = ToolPlaceOf(e.class_name)) item["sheets"] = place->sheets;
        items.push_back(std::move(item));
      }
      out.push_back({{"name", g}, {"entries", std::move(items)}});
    }
    return {200, {{"ok", true}, {"groups", std::move(out)}}, ""};
  }

  bool FindEntry(int32_t progID, MenuEntry& out, std::string& error) {
    for (const MenuEntry& e : Menu(error)) {
      if (e.progID == progID) {
        out = e;
        return true;
      }
    }
    return false;
  }

  WebResponse Protocol(WebSession& s, const json& req) {
    std::string op;
    if (!StringField(req, "op", op)) return Refuse(400, "missing field \"op\"");
    if (op == "session" || op == "sql")
      return Refuse(403, "the op \"" + op +
                             "\" is not available in the web client: the server opens the "
                             "session on its own database and answers the menu (GET /api/menu)");
    static const std::set<std::string> kOps = {"open",  "call", "gesture", "state",     "answer",
                                               "close", "tool", "export",  "print_grid"};
    if (!kOps.count(op)) return Refuse(400, "unknown op \"" + op + "\"");
    json forward = req;
    if (op == "open" || op == "tool") {
      int64_t prog = 0;
      if (!IntField(req, "progID", prog)) return Refuse(400, "\"" + op + "\" names a progID");
      MenuEntry entry;
      std::string error;
      if (!FindEntry(static_cast<int32_t>(prog), entry, error)) {
        if (!error.empty()) return Refuse(500, "cannot read the menu: " + error);
        return Refuse(404, "no menu entry " + std::to_string(prog));
      }
      std::string named;
      if (StringField(req, "class", named) && named != entry.class_name)
        return Refuse(400, "progID " + std::to_string(prog) + " is served by " + entry.class_name +
                               ", not " + named);
      const bool is_tool = KindName(entry.class_name) == "tool";
      if (is_tool != (op == "tool"))
        return Refuse(400, entry.class_name + (is_tool ? " is a tool: run it with \"tool\""
                                                       : " is a screen: open it with \"open\""));
      forward["class"] = entry.class_name;
    }
    auto dialog = req.find("dialog");
    const bool for_dialog = dialog != req.end() && dialog->is_boolean() && dialog->get<bool>();
    if (op == "call" || op == "close" || op == "export" || op == "print_grid" ||
        ((op == "gesture" || op == "state") && !for_dialog)) {
      int64_t screen = 0;
      if (!IntField(req, "screen", screen)) return Refuse(400, "\"" + op + "\" names a screen");
      if (!s.screens.count(static_cast<int>(screen)))
        return Refuse(404, "no screen " + std::to_string(screen) + " is open in this session");
    }
    if (!s.driver) {
      if (Status st = OpenDriver(s); !st.ok()) return Refuse(500, st.message());
    }
    json answer = s.driver->Handle(forward);
    if (op == "state" && !for_dialog) AddToolbarFacts(s, answer);
    PublishFiles(s, op, answer, ExportName(req));
    const bool ok = answer.value("ok", false);
    if (answer.contains("pending")) {
      if (op != "answer") {
        s.waiting_op = op;
        s.waiting_screen = op == "close" ? req["screen"].get<int>() : 0;
      }
    } else if (!(op == "answer" && !ok && !answer.contains("events"))) {
      // The answer that ends an operation: its own, or the one a box held up (an answer the
      // driver refused, without events, leaves the box waiting).
      const std::string ended = op == "answer" ? s.waiting_op : op;
      const int screen = op == "answer"  ? s.waiting_screen
                         : op == "close" ? req["screen"].get<int>()
                                         : 0;
      if (op == "answer") {
        s.waiting_op.clear();
        s.waiting_screen = 0;
      }
      if (ok && ended == "open" && answer["result"].is_number_integer())
        s.screens.insert(answer["result"].get<int>());
      // The host closes the screen even when its Clear fails.
      if (ended == "close") s.screens.erase(screen);
    }
    return {ok ? 200 : 422, std::move(answer), ""};
  }

  // Puts the files an answer names (a print's "documents", an export's file) among the
  // session's own and names them by URL; the browser never sees a server path.
  // The name an export is downloaded under: the screen's title the request gives and today's
  // date ("业主信息-2026-11-23"), without characters a file name cannot hold; "" without a title.
  static std::string ExportName(const json& req) {
    std::string title;
    if (!StringField(req, "title", title)) return "";
    std::string clean;
    for (char c : title) {
      if (std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos ||
          static_cast<unsigned char>(c) < 0x20)
        continue;
      clean += c;
    }
    clean = mrvk::Trim(clean);
    return clean.empty() ? "" : clean + "-" + Today();
  }

  static void PublishFiles(WebSession& s, const std::string& op, json& answer,
                           const std::string& export_name) {
    auto publish = [&s](const std::string& path, const std::string& shown = "") -> json {
      std::string id = RandomHex(kTokenBytes / 2);
      const std::string name = shown.empty()
                                   ? std::filesystem::path(path).filename().string()
                                   : shown + std::filesystem::path(path).extension().string();
      s.files[id] = {path, name};
      s.file_order.push_back(id);
      while (s.file_order.size() > kMaxSessionFiles) {
        s.files.erase(s.file_order.front());
        s.file_order.pop_front();
      }
      return {{"url", kFilePrefix + id}, {"name", name}};
    };
    if (auto docs = answer.find("documents"); docs != answer.end() && docs->is_array()) {
      for (json& d : *docs) {
        if (!d.is_object() || !d.contains("path") || !d["path"].is_string()) continue;
        const json where = publish(d["path"].get<std::string>());
        d.erase("path");
        d.update(where);
      }
    }
    if (op == "export" && answer.value("ok", false) && answer["result"].is_object() &&
        answer["result"].contains("path") && answer["result"]["path"].is_string()) {
      json& result = answer["result"];
      const json where = publish(result["path"].get<std::string>(), export_name);
      result.erase("path");
      result.update(where);
    }
  }

  // GET /api/file/ID: a file of the session, as a page (HTML, shown in the client's frame)
  // or as a download.
  static WebResponse ServeFile(WebSession& s, const std::string& id) {
    auto it = s.files.find(id);
    if (it == s.files.end()) return Refuse(404, "no such file in this session");
    const SessionFile& f = it->second;
    std::ifstream in(f.path, std::ios::binary);
    if (!in) return Refuse(404, "the file " + f.name + " is no longer there");
    std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    WebResponse r;
    r.content = std::move(content);
    const std::string ext = std::filesystem::path(f.name).extension().string();
    if (ext == ".html" || ext == ".htm") {
      r.content_type = "text/html; charset=utf-8";
      r.headers = {{"Content-Security-Policy", kPagePolicy},
                   {"X-Frame-Options", "SAMEORIGIN"},
                   {"Content-Disposition", "inline; filename*=" + EncodedFileName(f.name)}};
      return r;
    }
    r.content_type = ext == ".xlsx"
                         ? "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"
                     : ext == ".csv" ? "text/csv; charset=utf-8"
                                     : "application/octet-stream";
    r.headers = {{"Content-Disposition", "attachment; filename*=" + EncodedFileName(f.name)}};
    return r;
  }

  // The toolbar is enabled by IsDirty, GetID (in the state already), CheckStatus and
  // Attributes(98); a sheet's state answer gets the last two, read on the screen's thread.
  static void AddToolbarFacts(WebSession& s, json& answer) {
    if (!answer.value("ok", false) || answer.contains("pending")) return;
    json& result = answer["result"];
    if (!result.is_object() || !result.contains("IsDirty")) return;
    const json screen = result["screen"];
    auto ask = [&](const char* method, json args) -> json {
      json a = s.driver->Handle(
          {{"op", "call"}, {"screen", screen}, {"method", method}, {"args", std::move(args)}});
      if (a.contains("events") && a["events"].is_array() && !a["events"].empty()) {
        for (auto& e : a["events"]) answer["events"].push_back(e);
      }
      return a.value("ok", false) ? a["result"] : json();
    };
    result["CheckStatus"] = ask("CheckStatus", json::array({""}));
    result["Attributes98"] = ask("Attributes", json::array({98}));
  }

  Status OpenDriver(WebSession& s) {
    auto driver = std::make_unique<ProtocolDriver>();
    json a = driver->Handle({{"op", "session"},
                             {"database", config_.database},
                             {"user", s.user},
                             {"login_date", s.login_date},
                             {"app_path", PersonFolder(config_.app_path, s.user)},
                             {"shared_path", config_.app_path}});
    if (!a.value("ok", false))
      return Status::Error("cannot open the session: " + a.value("error", std::string()));
    s.driver = std::move(driver);
    return Status::Ok();
  }

  // Whether the session's user may still work: not removed, not disabled, same password.
  bool UserStillValid(WebSession& s) {
    const auto now = Clock::now();
    if (now - s.last_checked < config_.recheck_user) return true;
    UserRecord record;
    std::string error;
    if (!users_->Find(s.user, record, error)) return !error.empty();  // keep it on a glitch
    s.last_checked = now;
    return !record.disabled && record.hash == s.pwhash;
  }

  std::shared_ptr<WebSession> FindSession(const std::string& token) {
    if (token.empty()) return nullptr;
    std::lock_guard lock(sessions_mu_);
    auto it = sessions_.find(token);
    return it == sessions_.end() ? nullptr : it->second;
  }

  // Ends a session; its driver closes its screens once no request uses it any more.
  void EndSession(const std::string& token) {
    std::shared_ptr<WebSession> gone;
    std::lock_guard lock(sessions_mu_);
    auto it = sessions_.find(token);
    if (it == sessions_.end()) return;
    gone = std::move(it->second);
    sessions_.erase(it);
  }

  // Closes idle sessions every sweep_every, and removes old files every sweep_files_every,
  // on this thread of its own, so no person's request waits for it.
  void SweepLoop() {
    auto last_files = Clock::now();
    std::unique_lock lock(sweeper_mu_);
    while (!sweeper_cv_.wait_for(lock, config_.sweep_every, [this] { return stopping_; })) {
      lock.unlock();
      const auto now = Clock::now();
      SweepIdleSessions(now);
      throttle_.Prune(now);
      if (now - last_files >= config_.sweep_files_every) {
        last_files = now;
        SweepOldFiles(config_.app_path, config_.file_age);
      }
      lock.lock();
    }
  }

  void SweepIdleSessions(Clock::time_point now) {
    std::vector<std::shared_ptr<WebSession>> gone;
    {
      std::lock_guard lock(sessions_mu_);
      for (auto it = sessions_.begin(); it != sessions_.end();) {
        std::unique_lock busy(it->second->mu, std::try_to_lock);
        if (busy && now - it->second->last_used.load() > config_.idle_limit) {
          busy.unlock();
          gone.push_back(std::move(it->second));
          it = sessions_.erase(it);
        } else {
          ++it;
        }
      }
    }
    // The drivers close their screens here, outside the lock.
  }

  WebConfig config_;
  std::unique_ptr<db::Database> database_;
  std::mutex db_mu_;  // one menu read at a time on database_
  std::unique_ptr<db::Database> users_db_;
  std::unique_ptr<UserStore> users_;
  mutable std::mutex sessions_mu_;
  std::map<std::string, std::shared_ptr<WebSession>> sessions_;
  SignInThrottle throttle_;
  std::mutex sweeper_mu_;
  std::condition_variable sweeper_cv_;
  bool stopping_ = false;
  std::thread sweeper_;
};

std::string PersonFolder(const std::string& app_path, const std::string& user) {
  static const char* kHex = "0123456789ABCDEF";
  std::string name;
  for (unsigned char ch : user) {
    const bool plain = (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z') ||
                       (ch >= 'a' && ch <= 'z') || ch == '-' || ch == '_';
    if (plain || ch >= 0x80) {
      name += static_cast<char>(ch);
    } else {
      name += '%';
      name += kHex[ch >> 4];
      name += kHex[ch & 15];
    }
  }
  return (std::filesystem::path(app_path) / "users" / name).string();
}

WebApp::WebApp(WebConfig config) : impl_(std::make_unique<Impl>(std::move(config))) {}
WebApp::~WebApp() = default;

Status WebApp::Start(std::string& one_time_password) { return impl_->Start(one_time_password); }

WebResponse WebApp::Handle(const WebRequest& request) {
  WebResponse r;
  try {
    r = impl_->Handle(request);
  } catch (const std::exception& e) {
    r = Refuse(500, std::string("internal error: ") + e.what());
  }
  ForTheClerk(request, r);
  return r;
}

std::vector<MenuEntry> WebApp::Menu(std::string& error) { return impl_->Menu(error); }

size_t WebApp::SessionCount() const { return impl_->SessionCount(); }

}  // namespace kvhost::web
