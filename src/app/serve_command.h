// mrvk serve: the web client; mrvk user: who may sign in to it.
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

// mrvk user add|passwd NAME [--password-stdin] | disable|enable NAME | list  [--database URL]
// The people who may sign in to the web client. add and passwd read the password from the
// first line of `in` with --password-stdin; without it they make a one-time password, print it,
// and the person must change it at the first sign-in.
int RunUser(const std::vector<std::string>& args, std::istream& in, std::ostream& out,
            std::ostream& err);

}  // namespace mrvk_app
