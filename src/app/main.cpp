// mrvk: the house-rental management system's executable.
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/demo_command.h"
#include "app/schedule_command.h"
#include "app/serve_command.h"

namespace {

constexpr const char* kUsage =
    "usage: mrvk <command> [options]\n"
    "commands:\n"
    "  init-db [--database URL]   create or upgrade the database schema\n"
    "  drive                      the screen protocol on stdin/stdout (JSON lines)\n"
    "  demo [--database URL] [--units N] [--seed S]\n"
    "                             fill an empty database with demo master data\n"
    "  serve [--database URL] [--port N]\n"
    "                             the web client on http://127.0.0.1:8080/\n"
    "  user add|passwd|disable|enable NAME, user list\n"
    "                             who may sign in to the web client\n"
    "  schedule --start D --end D --months M --period T [--arrears] [--json]\n"
    "                             preview the collection periods of one fee term\n"
    "database URLs: sqlite:///path/file.sqlite3, sqlite:// (in memory), postgresql://...\n";

// Large lists read hundreds of thousands of values into fresh memory, and on virtual
// machines each first touch of a page is expensive. With transparent huge pages for the heap
// glibc touches 512 times fewer pages. glibc reads the setting only when a program starts,
// so the program starts itself again once with it; when that fails it goes on without.
void UseHugePagesForTheHeap(char** argv) {
  constexpr const char* kSetting = "glibc.malloc.hugetlb=1";
  const char* tunables = std::getenv("GLIBC_TUNABLES");
  if (tunables && std::strstr(tunables, "glibc.malloc.hugetlb")) return;
  const std::string value =
      tunables && *tunables ? std::string(tunables) + ":" + kSetting : kSetting;
  if (setenv("GLIBC_TUNABLES", value.c_str(), /*overwrite=*/1) != 0) return;
  execv("/proc/self/exe", argv);
}

}  // namespace

int main(int argc, char** argv) {
  UseHugePagesForTheHeap(argv);
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    std::cout << kUsage;
    return args.empty() ? 2 : 0;
  }
  const std::string command = args[0];
  args.erase(args.begin());
  if (command == "init-db") return mrvk_app::RunInitDb(args, std::cout, std::cerr);
  if (command == "drive") return mrvk_app::RunDrive(args, std::cin, std::cout, std::cerr);
  if (command == "demo") return mrvk_app::RunDemo(args, std::cout, std::cerr);
  if (command == "serve") return mrvk_app::RunServe(args, std::cout, std::cerr);
  if (command == "user") return mrvk_app::RunUser(args, std::cin, std::cout, std::cerr);
  if (command == "schedule") return mrvk_app::RunScheduleCommand(args, std::cout, std::cerr);
  std::cerr << "mrvk: unknown command \"" << command << "\"\n" << kUsage;
  return 2;
}
