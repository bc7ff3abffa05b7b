// `mrvk serve`'s HTTP server: the API of WebApp under /api/ and the browser client's static
// files (web/static) under /, on cpp-httplib. Connections are served by a pool of threads;
// a request never waits for a person (a box the logic shows is answered "pending" at once),
// so a clerk reading a question holds no thread.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "kvhost/status.h"
#include "kvhost/web/web_app.h"

namespace kvhost::web {

struct ServeOptions {
  WebConfig app;
  std::string bind = "127.0.0.1";
  int port = 8080;         // 0: any free port
  std::string static_dir;  // "" for FindStaticDir()
  // Threads serving connections. Each open connection holds a thread while it is kept alive
  // and a browser keeps several, so a pool smaller than the connections of the people at work
  // makes requests wait for a free thread, whatever the load (measured: 100 clerks on 64
  // threads waited seconds). Idle threads cost only address space.
  int threads = 512;
  // TLS. A server bound beyond the loopback always speaks it: with this certificate and key
  // (PEM files), or, when none are given, with a self-signed pair it makes at its first run
  // in tls_dir ("" for app_path + "/tls"). On the loopback it speaks plain HTTP unless a
  // certificate is given.
  std::string cert_file;
  std::string key_file;
  std::string tls_dir;
};

// Whether a server with these options speaks TLS.
bool UsesTls(const ServeOptions& options);

// The folder of the browser client: beside the executable (web/static), else the source
// tree's src/kvhost/web/static. "" when neither holds index.html.
std::string FindStaticDir();

class WebServer {
 public:
  explicit WebServer(ServeOptions options);
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  // Starts the application (see WebApp::Start) and binds the port.
  Status Start(std::string& one_time_password);
  int port() const { return port_; }
  bool tls() const { return UsesTls(options_); }
  // The certificate in use ("" without TLS).
  const std::string& cert_file() const { return cert_in_use_; }
  const std::string& static_dir() const { return static_dir_; }
  WebApp& app() { return *app_; }

  // Serves until Stop (from any thread).
  void Run();
  void Stop();

 private:
  class Transport;
  ServeOptions options_;
  std::string static_dir_;
  std::string cert_in_use_;
  std::unique_ptr<WebApp> app_;
  std::unique_ptr<Transport> transport_;
  int port_ = 0;
  std::atomic<bool> running_{false};
  std::atomic<bool> stop_requested_{false};
};

}  // namespace kvhost::web
