// Databases for benchmarks: a SQLite file in a temporary folder and, when MRVK_TEST_PG names
// a cluster, a fresh PostgreSQL schema in it (scripts/bench.sh starts one).
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "kvhost/db/pg_connection.h"
#include "kvhost/host.h"

namespace mrvk_bench {

// A setup step that must succeed: a benchmark on a half-built database measures nothing.
inline void Must(const kvhost::Status& s, const char* what) {
  if (s.ok()) return;
  std::fprintf(stderr, "%s: %s\n", what, s.message().c_str());
  std::exit(1);
}

inline std::string SqliteUrl(const std::string& name) {
  const auto file = std::filesystem::temp_directory_path() / ("mrvk_bench_" + name + ".sqlite3");
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + suffix);
  return "sqlite://" + file.string();
}

// "" when no PostgreSQL cluster is named.
inline std::string PgUrl(const std::string& name) {
  const char* base = std::getenv("MRVK_TEST_PG");
  if (!base || !*base) return "";
  std::string error;
  auto admin = kvhost::db::PgConnection::Open(base, error);
  if (!admin) return "";
  const std::string schema = "bench_" + name;
  Must(admin->ExecuteRaw("DROP SCHEMA IF EXISTS " + schema + " CASCADE"), "drop schema");
  Must(admin->ExecuteRaw("CREATE SCHEMA " + schema), "create schema");
  std::string url = base;
  return url + (url.find('?') == std::string::npos ? "?" : "&") + "options=-csearch_path%3D" +
         schema;
}

inline std::unique_ptr<kvhost::Host> OpenHost(const std::string& url) {
  auto host = std::make_unique<kvhost::Host>(kvhost::HostConfig{
      .database = url, .user = "bench", .login_date = "2012-10-11", .app_path = "."});
  if (host->status().ok()) Must(host->create_schema(), "create schema");
  return host;
}

}  // namespace mrvk_bench
