// mrvk serve: the web client.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "kvhost/web/web_app.h"

namespace mrvk_app {

// mrvk serve [--database URL] [--port N] [--bind ADDR] [--app-path DIR] [--static DIR]
//            [--threads N]
// Serves until SIGINT or SIGTERM. On a database without users it creates the administrator
// and prints its one-time password. extra_menu adds menu entries (the test server's screens).
int RunServe(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
             const std::vector<kvhost::web::MenuEntry>& extra_menu = {});

}  // namespace mrvk_app
