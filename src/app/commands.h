// The commands of the `mrvk` executable. Each takes its arguments (without the program and
// command names), writes to out and err, and returns the exit code: 0 done, 1 failed, 2 bad
// usage.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace mrvk_app {

// mrvk init-db [--database URL]: creates or upgrades the schema.
int RunInitDb(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// mrvk drive: the screen protocol on in/out, one JSON request and answer per line.
int RunDrive(const std::vector<std::string>& args, std::istream& in, std::ostream& out,
             std::ostream& err);

// The database of the project folder, used when --database is not given.
std::string DefaultDatabaseUrl();

// Makes the folder of a SQLite file database URL, so that a fresh checkout can start at once.
void EnsureSqliteFolder(const std::string& url);

}  // namespace mrvk_app
