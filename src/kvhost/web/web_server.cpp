#include "kvhost/web/web_server.h"

#include <httplib.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "kvhost/protocol.h"
#include "kvhost/web/tls.h"

namespace kvhost::web {
namespace {

// Answers of the API are never cached; pages may not be framed or sniffed.
const httplib::Headers& SecurityHeaders() {
  static const httplib::Headers headers = {
      {"X-Content-Type-Options", "nosniff"},
      {"X-Frame-Options", "DENY"},
      {"Referrer-Policy", "no-referrer"},
      {"Content-Security-Policy",
       "default-src 'self'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
       "connect-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'self'"},
  };
  return headers;
}

bool HasIndex(const std::filesystem::path& dir) {
  std::error_code ec;
  return std::filesystem::is_regular_file(dir / "index.html", ec);
}

}  // namespace

bool UsesTls(const ServeOptions& options) {
  return !options.cert_file.empty() || !IsLoopback(options.bind);
}

std::string FindStaticDir() {
  std::error_code ec;
  const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    for (const auto& candidate : {exe.parent_path() / "web" / "static",
                                  exe.parent_path().parent_path() / "share" / "mrvk" / "static"}) {
      if (HasIndex(candidate)) return candidate.string();
    }
  }
#ifdef MRVK_WEB_STATIC_DIR
  if (HasIndex(MRVK_WEB_STATIC_DIR)) return MRVK_WEB_STATIC_DIR;
#endif
  return "";
}

class WebServer::Transport {
 public:
  // An httplib::SSLServer with TLS; made by Start.
  std::unique_ptr<httplib::Server> server;
};

namespace {

ServeOptions WithCookieFlag(ServeOptions options) {
  options.app.secure_cookie = options.app.secure_cookie || UsesTls(options);
  return options;
}

}  // namespace

WebServer::WebServer(ServeOptions options)
    : options_(WithCookieFlag(std::move(options))),
      app_(std::make_unique<WebApp>(options_.app)),
      transport_(std::make_unique<Transport>()) {}

WebServer::~WebServer() { Stop(); }

Status WebServer::Start(std::string& one_time_password) {
  static_dir_ = options_.static_dir.empty() ? FindStaticDir() : options_.static_dir;
  if (static_dir_.empty() || !HasIndex(static_dir_))
    return Status::Error("the browser client's files are not found (index.html in \"" +
                         static_dir_ + "\"); name their folder with --static DIR");
  if (UsesTls(options_)) {
    std::string cert = options_.cert_file, key = options_.key_file;
    if (cert.empty() != key.empty())
      return Status::Error("a certificate and its key are given together (--cert FILE --key FILE)");
    if (cert.empty()) {
      const std::string folder =
          options_.tls_dir.empty() ? (std::filesystem::path(options_.app.app_path) / "tls").string()
                                   : options_.tls_dir;
      if (Status s = EnsureSelfSignedPair(folder, options_.bind, cert, key); !s.ok()) return s;
    }
    auto server = std::make_unique<httplib::SSLServer>(cert.c_str(), key.c_str());
    if (!server->is_valid())
      return Status::Error("cannot serve TLS with the certificate " + cert + " and the key " + key);
    transport_->server = std::move(server);
    cert_in_use_ = cert;
  } else {
    transport_->server = std::make_unique<httplib::Server>();
  }
  if (Status s = app_->Start(one_time_password); !s.ok()) return s;

  httplib::Server& svr = *transport_->server;
  const size_t threads = static_cast<size_t>(std::max(options_.threads, 2));
  svr.new_task_queue = [threads] { return new httplib::ThreadPool(threads); };
  svr.set_payload_max_length(kMaxRequestBytes);
  // A connection serves many requests before it is closed, and an idle one gives its thread
  // back after two seconds.
  svr.set_keep_alive_max_count(1000);
  svr.set_keep_alive_timeout(2);
  svr.set_default_headers(SecurityHeaders());
  svr.set_file_extension_and_mimetype_mapping("html", "text/html; charset=utf-8");
  svr.set_file_extension_and_mimetype_mapping("js", "text/javascript; charset=utf-8");
  svr.set_file_extension_and_mimetype_mapping("css", "text/css; charset=utf-8");
  if (!svr.set_mount_point("/", static_dir_))
    return Status::Error("cannot serve the folder " + static_dir_);

  auto api = [this](const httplib::Request& req, httplib::Response& res) {
    WebRequest r;
    r.method = req.method;
    r.path = req.path;
    r.body = req.body;
    r.content_type = req.get_header_value("Content-Type");
    r.cookie = req.get_header_value("Cookie");
    r.csrf = req.get_header_value(kCsrfHeader);
    r.origin = req.get_header_value("Origin");
    r.host = req.get_header_value("Host");
    r.remote_address = req.remote_addr;
    WebResponse a = app_->Handle(r);
    res.status = a.status;
    res.set_header("Cache-Control", "no-store");
    if (!a.set_cookie.empty()) res.set_header("Set-Cookie", a.set_cookie);
    if (!a.content_type.empty()) {
      // A file of the session: its own headers replace the defaults of the same name.
      for (const auto& [name, value] : a.headers) {
        res.headers.erase(name);
        res.set_header(name, value);
      }
      res.set_content(std::move(a.content), a.content_type);
      return;
    }
    res.set_content(
        a.body.dump(-1, ' ', /*ensure_ascii=*/false, nlohmann::json::error_handler_t::replace),
        "application/json; charset=utf-8");
  };
  svr.Get(R"(/api/.*)", api);
  svr.Post(R"(/api/.*)", api);
  svr.Put(R"(/api/.*)", api);
  svr.Delete(R"(/api/.*)", api);

  if (options_.port == 0) {
    port_ = svr.bind_to_any_port(options_.bind);
    if (port_ <= 0) return Status::Error("cannot bind to " + options_.bind);
  } else {
    if (!svr.bind_to_port(options_.bind, options_.port))
      return Status::Error("cannot bind to " + options_.bind + ":" + std::to_string(options_.port) +
                           " (in use, or no such address)");
    port_ = options_.port;
  }
  return Status::Ok();
}

void WebServer::Run() {
  running_ = true;
  if (!stop_requested_ && transport_->server) transport_->server->listen_after_bind();
  running_ = false;
}

void WebServer::Stop() {
  stop_requested_ = true;
  // Run may be about to listen: stop it once it does.
  while (running_) {
    if (transport_->server && transport_->server->is_running()) transport_->server->stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

}  // namespace kvhost::web
