// The web client's server side without the HTTP transport: sign-in and sessions, the menu,
// and the screen protocol bound to each session's own driver. web_server.* puts it behind
// cpp-httplib; tests call Handle directly or over HTTP.
//
// API (every body is JSON; every answer carries "ok" and, when not ok, "error"):
//   POST /api/signin    {"user","password","login_date"?}  sets the session cookie; answers
//                       user, login_date, csrf (the request token) and must_change; 429
//                       while the name or the address is locked after failed sign-ins
//   GET  /api/session   the signed-in session as above, or 401
//   POST /api/signout   ends the session
//   POST /api/password  {"old","new"}: a new password (required first when must_change)
//   GET  /api/menu      the menu: xt_menu joined with xt_objects, in groups
//   POST /api/protocol  one request of the screen protocol, one answer
//   GET  /api/file/ID   a page a print made or a file an export wrote, by the "url" an
//                       answer of this session gave for it; any other ID is 404
// Every POST but signin needs the session cookie and the header X-CSRF-Token with the token
// of the sign-in; a POST from another origin is refused. A body is at most kMaxRequestBytes
// and nests at most kMaxRequestDepth levels (protocol.h). The browser never names a database:
// "session" and "sql" are refused, "open" and "tool" name a progID of the menu and the server
// finds the class, and "call", "gesture", "state", "close" and "export" name a screen of the
// session. The browser never sees a server path either: the "documents" of an answer and the
// file of an export come as {"url": "/api/file/ID", "name"} of the session's own files.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "kvhost/status.h"
#include "kvhost/web/password.h"

namespace kvhost::web {

struct MenuEntry {
  int32_t progID = 0;
  std::string name;
  std::string group;
  std::string class_name;
  int sortno = 0;
};

struct WebConfig {
  std::string database;  // the server's database URL; every session works on it
  // The office's program folder. Each person works in a folder of their own below it,
  // users/<name made safe> (PersonFolder): layouts, print settings and data, exports.
  std::string app_path = ".";
  int hash_iterations = kDefaultHashIterations;
  // A session unused this long is closed with its screens.
  std::chrono::minutes idle_limit{8 * 60};
  // How often a session checks that its user is still enabled with the same password.
  std::chrono::seconds recheck_user{60};
  // Entries shown besides those of xt_menu (the test server's screens).
  std::vector<MenuEntry> extra_menu = {};
  // Set when the server speaks TLS, or sits behind a TLS proxy: the session cookie is then
  // marked Secure.
  bool secure_cookie = false;
  // Sign-in throttling: after this many failed sign-ins of one name, or from one address,
  // sign-ins are refused for first_lock, doubled with each further failure up to max_lock.
  // Failures are forgotten max_lock after the last one; a sign-in clears its name's.
  int failures_per_name = 5;
  int failures_per_address = 20;
  std::chrono::milliseconds first_lock{30 * 1000};
  std::chrono::milliseconds max_lock{15 * 60 * 1000};
  // Sessions one person may have at once; a further sign-in closes the least recently used.
  size_t sessions_per_user = 8;
  // How often, on a thread of its own, idle sessions are closed, and how often exports,
  // print pages and print data files older than file_age are removed (also at the start).
  std::chrono::seconds sweep_every{60};
  std::chrono::seconds sweep_files_every{60 * 60};
  std::chrono::seconds file_age{24 * 60 * 60};
};

struct WebRequest {
  std::string method;  // "GET", "POST", ...
  std::string path;    // "/api/protocol"
  std::string body;
  std::string content_type;
  std::string cookie;          // the Cookie header
  std::string csrf;            // the X-CSRF-Token header
  std::string origin;          // the Origin header; "" when the browser sent none
  std::string host;            // the Host header
  std::string remote_address;  // the peer's address, for throttling sign-ins
};

struct WebResponse {
  WebResponse() = default;
  WebResponse(int status_code, nlohmann::json json_body, std::string cookie = "")
      : status(status_code), body(std::move(json_body)), set_cookie(std::move(cookie)) {}

  int status = 200;
  nlohmann::json body;
  std::string set_cookie;  // a Set-Cookie value; "" for none
  // A file in place of the JSON body (GET /api/file/...); content_type "" for JSON.
  std::string content_type;
  std::string content;
  // Headers of the file's answer; each replaces the server's default of that name.
  std::vector<std::pair<std::string, std::string>> headers;
};

// The folder of a person's own files below the office's: app_path + "/users/" + the name
// with every byte but ASCII letters, digits, "-", "_" and those of non-ASCII characters
// written as "%XX", so no name reaches outside the folder and two names never share one.
std::string PersonFolder(const std::string& app_path, const std::string& user);

inline constexpr const char* kSessionCookie = "mrvk_session";
inline constexpr const char* kCsrfHeader = "X-CSRF-Token";

class WebApp {
 public:
  explicit WebApp(WebConfig config);
  ~WebApp();
  WebApp(const WebApp&) = delete;
  WebApp& operator=(const WebApp&) = delete;

  // Opens the server's database (creating the schema when it is new) and, on a database
  // without users, the administrator: its one-time password is given here, once.
  Status Start(std::string& one_time_password);

  // Answers one request of the API. Never throws.
  WebResponse Handle(const WebRequest& request);

  // The menu entries, xt_menu's and the extra ones, by progID.
  std::vector<MenuEntry> Menu(std::string& error);
  size_t SessionCount() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace kvhost::web
