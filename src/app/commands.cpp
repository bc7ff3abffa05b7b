#include "app/commands.h"

#include <filesystem>
#include <iostream>

#include "kvhost/host.h"
#include "kvhost/protocol.h"

namespace mrvk_app {
namespace {

// Reads one line; of a line longer than a request may be, only one byte beyond the limit is
// kept (the driver refuses it as too large) and the rest is read past.
bool ReadRequestLine(std::istream& in, std::string& line) {
  line.clear();
  std::streambuf* buffer = in.rdbuf();
  bool any = false;
  for (int ch = buffer->sbumpc(); ch != std::char_traits<char>::eof(); ch = buffer->sbumpc()) {
    any = true;
    if (ch == '\n') return true;
    if (line.size() <= kvhost::kMaxRequestBytes) line.push_back(static_cast<char>(ch));
  }
  return any;
}

}  // namespace

std::string DefaultDatabaseUrl() {
  const std::filesystem::path dir = std::filesystem::current_path() / "data";
  return "sqlite://" + (dir / "mrvk.sqlite3").string();
}

// Makes the folder of a SQLite file database, so that a fresh checkout can start at once.
void EnsureSqliteFolder(const std::string& url) {
  static const std::string kSqlite = "sqlite://";
  if (url.rfind(kSqlite, 0) != 0 || url.size() == kSqlite.size()) return;
  const std::filesystem::path file(url.substr(kSqlite.size()));
  std::error_code ec;
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), ec);
}

int RunInitDb(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  std::string url = DefaultDatabaseUrl();
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--database" && i + 1 < args.size()) {
      url = args[++i];
    } else {
      err << "mrvk init-db: unknown argument \"" << args[i] << "\"\n"
          << "usage: mrvk init-db [--database URL]\n";
      return 2;
    }
  }
  EnsureSqliteFolder(url);
  kvhost::Host host({.database = url, .user = "admin", .login_date = "", .app_path = "."});
  if (!host.status().ok()) {
    err << "mrvk init-db: " << host.status().message() << "\n";
    return 1;
  }
  kvhost::Status s = host.create_schema();
  if (!s.ok()) {
    err << "mrvk init-db: " << s.message() << "\n";
    return 1;
  }
  out << "schema ready: " << url << "\n";
  return 0;
}

int RunDrive(const std::vector<std::string>& args, std::istream& in, std::ostream& out,
             std::ostream& err) {
  if (!args.empty()) {
    err << "mrvk drive: takes no arguments; send JSON requests on stdin, one per line\n";
    return 2;
  }
  kvhost::ProtocolDriver driver;
  std::string line;
  while (ReadRequestLine(in, line)) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    out << driver.HandleLine(line) << "\n" << std::flush;
  }
  return 0;
}

}  // namespace mrvk_app
