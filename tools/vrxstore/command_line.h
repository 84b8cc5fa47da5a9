// Reads vrxstore's command line.
#pragma once

#include <optional>

#include "tools/vrxstore/options.h"

namespace vrxstore {

// The options, or the exit status when the command line ends the run (--help: 0; a usage
// error, reported on stderr: 2).
struct ParsedCommandLine {
  Options options;
  std::optional<int> exitStatus;
};

ParsedCommandLine parseCommandLine(int argc, char** argv);

}  // namespace vrxstore
