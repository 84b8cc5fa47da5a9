// The command line of vrxstore.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vrxstore {

struct Options {
  std::string command;  // "load", "diff" or "query"
  std::string target;
  std::string schema;  // the MOF file; qelto.mof beside the program when empty
  std::string format = "table";
  std::vector<std::string> files;       // load
  std::string machine;                  // diff
  std::optional<std::string> from, to;  // diff
  std::string question;                 // query
  std::vector<std::string> arguments;   // query
};

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

}  // namespace vrxstore
