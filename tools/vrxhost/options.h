// The command line of vrxhost.
#pragma once

#include <string>
#include <vector>

namespace vrxhost {

struct Options {
  std::string machine;
  std::string user;
  std::string now;  // as given: ISO 8601 with its zone, or CIM date-time text
  // The Windows partition of a disk image, as its partition table numbers it; 0 when not chosen.
  unsigned partition = 0;
  std::string schema;
  std::string plugin;
  std::string format = "json";
  std::string output;
  // Where the inventory goes as one snapshot: a SQLite file or a PostgreSQL URI; empty for none.
  std::string store;
  std::string log;
  int logLevel = 4;
  bool verbose = false;
  std::vector<std::string> classes;
  // A registry key: the run writes the machine's registry from it down instead of an inventory.
  std::string exportRegistry;
};

// The classes asked for when the command line names none.
const std::vector<std::string>& defaultClasses();

// Exit statuses.
constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

}  // namespace vrxhost
