// `mrvk schedule`: a preview of the collection periods of one fee term, without a database.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace mrvk_app {

// mrvk schedule --start D --end D --months M --period T [--arrears] [--json] | --help
// args exclude the program name and the word "schedule". The periods go to out as a table, or
// with --json as one JSON array of objects in period order. Returns 0 when done (also for a
// fee term without a schedule), 2 with a one-line message on err and nothing on out for bad
// usage: a missing or unreadable option, or lease numbers the calculation cannot take.
int RunScheduleCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace mrvk_app

// The executable's dispatcher calls it by its plain name.
using mrvk_app::RunScheduleCommand;
