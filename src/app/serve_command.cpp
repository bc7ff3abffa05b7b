#include "app/serve_command.h"

#include <pthread.h>
#include <signal.h>

#include <charconv>
#include <filesystem>
#include <iostream>
#include <thread>

#include "app/commands.h"
#include "kvhost/host.h"
#include "kvhost/web/user_store.h"
#include "kvhost/web/web_server.h"

namespace mrvk_app {
namespace {

constexpr const char* kUsage =
    "usage: mrvk serve [--database URL] [--port N] [--bind ADDR] [--app-path DIR] "
    "[--static DIR] [--threads N] [--cert FILE --key FILE] [--secure-cookie]\n";
constexpr int kDefaultPort = 8080;
constexpr int kMaxPort = 65535;
constexpr int kMaxThreads = 1024;

bool ParseInt(const std::string& text, int low, int high, int& out) {
  int v = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
  if (ec != std::errc() || end != text.data() + text.size() || v < low || v > high) return false;
  out = v;
  return true;
}

}  // namespace

int RunServe(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
             const std::vector<kvhost::web::MenuEntry>& extra_menu) {
  kvhost::web::ServeOptions options;
  options.app.database = DefaultDatabaseUrl();
  // Layout and print files of the screens go below ./data, beside the default database.
  options.app.app_path = (std::filesystem::current_path() / "data").string();
  options.port = kDefaultPort;
  options.app.extra_menu = extra_menu;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool has_value = i + 1 < args.size();
    if (a == "--database" && has_value) {
      options.app.database = args[++i];
    } else if (a == "--bind" && has_value) {
      options.bind = args[++i];
    } else if (a == "--app-path" && has_value) {
      options.app.app_path = args[++i];
    } else if (a == "--secure-cookie") {
      // Behind a TLS proxy: the browser sends the session cookie over HTTPS only.
      options.app.secure_cookie = true;
    } else if (a == "--cert" && has_value) {
      options.cert_file = args[++i];
    } else if (a == "--key" && has_value) {
      options.key_file = args[++i];
    } else if (a == "--static" && has_value) {
      options.static_dir = args[++i];
    } else if (a == "--port" && has_value) {
      if (!ParseInt(args[++i], 0, kMaxPort, options.port)) {
        err << "mrvk serve: --port takes a number from 0 (any free port) to 65535\n";
        return 2;
      }
    } else if (a == "--threads" && has_value) {
      if (!ParseInt(args[++i], 2, kMaxThreads, options.threads)) {
        err << "mrvk serve: --threads takes a number from 2 to 1024\n";
        return 2;
      }
    } else {
      err << "mrvk serve: unknown argument \"" << a << "\"\n" << kUsage;
      return 2;
    }
  }
  EnsureSqliteFolder(options.app.database);

  // SIGINT and SIGTERM go to one waiting thread, which stops the server; every thread made
  // from here on inherits the mask.
  sigset_t stop_signals, saved;
  sigemptyset(&stop_signals);
  sigaddset(&stop_signals, SIGINT);
  sigaddset(&stop_signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop_signals, &saved);

  int code = 0;
  {
    kvhost::web::WebServer server(options);
    std::string one_time_password;
    kvhost::Status st = server.Start(one_time_password);
    if (!st.ok()) {
      err << "mrvk serve: " << st.message() << "\n";
      code = 1;
    } else {
      out << "mrvk serve: database " << options.app.database << "\n";
      if (!one_time_password.empty())
        out << "mrvk serve: first run: the administrator \"" << kvhost::web::kAdministrator
            << "\" has the one-time password: " << one_time_password
            << "\nmrvk serve: it is shown only now and must be changed at the first sign-in\n";
      if (server.tls() && options.cert_file.empty())
        out << "mrvk serve: TLS with the self-signed certificate " << server.cert_file()
            << " (browsers ask once to trust it; give your own with --cert FILE --key FILE)\n";
      out << "mrvk serve: listening on " << (server.tls() ? "https" : "http") << "://"
          << options.bind << ":" << server.port() << "/ (Ctrl+C stops)\n"
          << std::flush;
      std::thread waiter([&server, &stop_signals] {
        int sig = 0;
        sigwait(&stop_signals, &sig);
        server.Stop();
      });
      server.Run();
      // Run also ends when listening fails: wake the waiter.
      pthread_kill(waiter.native_handle(), SIGTERM);
      waiter.join();
      out << "mrvk serve: stopped\n" << std::flush;
    }
  }
  pthread_sigmask(SIG_SETMASK, &saved, nullptr);
  return code;
}

int RunUser(const std::vector<std::string>& args, std::istream& in, std::ostream& out,
            std::ostream& err) {
  static const char* kUserUsage =
      "usage: mrvk user add|passwd NAME [--password-stdin] [--database URL]\n"
      "       mrvk user disable|enable NAME [--database URL]\n"
      "       mrvk user list [--database URL]\n";
  std::string url = DefaultDatabaseUrl();
  std::vector<std::string> words;
  bool password_stdin = false;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--database" && i + 1 < args.size()) {
      url = args[++i];
    } else if (args[i] == "--password-stdin") {
      password_stdin = true;
    } else if (args[i].rfind("--", 0) == 0) {
      err << "mrvk user: unknown option \"" << args[i] << "\"\n" << kUserUsage;
      return 2;
    } else {
      words.push_back(args[i]);
    }
  }
  const std::string action = words.empty() ? "" : words[0];
  const bool named =
      action == "add" || action == "passwd" || action == "disable" || action == "enable";
  if (!(named && words.size() == 2) && !(action == "list" && words.size() == 1)) {
    err << kUserUsage;
    return 2;
  }
  if (password_stdin && action != "add" && action != "passwd") {
    err << "mrvk user: --password-stdin goes with add and passwd\n";
    return 2;
  }
  EnsureSqliteFolder(url);
  {
    // The users' table comes with the schema: a new database gets it here.
    kvhost::Host host({.database = url, .user = "admin", .login_date = "", .app_path = "."});
    kvhost::Status s = host.status().ok() ? host.create_schema() : host.status();
    if (!s.ok()) {
      err << "mrvk user: " << s.message() << "\n";
      return 1;
    }
  }
  std::string error;
  auto database = kvhost::db::OpenDatabase(url, error);
  if (!database) {
    err << "mrvk user: " << error << "\n";
    return 1;
  }
  kvhost::web::UserStore users(*database);
  if (action == "list") {
    auto list = users.List(error);
    if (!error.empty()) {
      err << "mrvk user: " << error << "\n";
      return 1;
    }
    for (const auto& u : list)
      out << u.name << (u.disabled ? "\tdisabled" : "\tenabled")
          << (u.must_change ? "\tmust change password" : "") << "\n";
    return 0;
  }
  const std::string& name = words[1];
  kvhost::Status st = kvhost::Status::Ok();
  std::string shown_password;
  if (action == "add" || action == "passwd") {
    std::string password;
    if (password_stdin) {
      if (!std::getline(in, password)) {
        err << "mrvk user: no password on standard input\n";
        return 1;
      }
      if (!password.empty() && password.back() == '\r') password.pop_back();
    } else {
      password = kvhost::web::RandomPassword();
      shown_password = password;
    }
    const bool must_change = !password_stdin;
    st = action == "add" ? users.Add(name, password, must_change)
                         : users.SetPassword(name, password, must_change);
  } else {
    st = users.SetDisabled(name, /*disabled=*/action == "disable");
  }
  if (!st.ok()) {
    err << "mrvk user: " << st.message() << "\n";
    return 1;
  }
  if (action == "add") out << "user \"" << name << "\" added\n";
  if (action == "passwd") out << "password of \"" << name << "\" set\n";
  if (action == "disable") out << "user \"" << name << "\" disabled\n";
  if (action == "enable") out << "user \"" << name << "\" enabled\n";
  if (!shown_password.empty())
    out << "one-time password: " << shown_password
        << "\n(shown only now; it must be changed at the first sign-in)\n";
  return 0;
}

}  // namespace mrvk_app
