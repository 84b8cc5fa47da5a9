// Reads vrxhost's command line.
#pragma once

#include <optional>

#include "tools/vrxhost/options.h"

namespace vrxhost {

// The options, or the exit status when the command line ends the run
// (--help: 0; a usage error, reported on stderr: 2).
struct ParsedCommandLine {
  Options options;
  std::optional<int> exitStatus;
};

ParsedCommandLine parseCommandLine(int argc, char** argv);

}  // namespace vrxhost
