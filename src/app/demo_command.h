// mrvk demo: fills a database with realistic master data for trying the system out.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace mrvk_app {

// mrvk demo [--database URL] [--units N] [--contracts C] [--seed S]: estates, buildings,
// owners, clients, fee categories and N housing units (default 2000), with keys from the host's
// key source; rooms for one unit in five; then C approved contracts (default three quarters of
// the units, at most one a unit), entered on the contract sheet.
// A database that already holds estates is left alone (exit 1). Progress goes to out.
int RunDemo(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace mrvk_app
