#include "app/serve_command.h"

#include <pthread.h>
#include <signal.h>

#include <charconv>
#include <iostream>
#include <thread>

#include "app/commands.h"
#include "kvhost/web/user_store.h"
#include "kvhost/web/web_server.h"

namespace mrvk_app {
namespace {

constexpr const char* kUsage =
    "usage: mrvk serve [--database URL] [--port N] [--bind ADDR] [--app-path DIR] "
    "[--static DIR] [--threads N]\n";
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
      out << "mrvk serve: listening on http://" << options.bind << ":" << server.port()
          << "/ (Ctrl+C stops)\n"
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

}  // namespace mrvk_app
