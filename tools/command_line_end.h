// How the programs' command lines end a run before it starts: --help and --version print and end
// it with 0, a usage error is reported on stderr and ends it with the program's usage status.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>

namespace vrxtools {

// nullopt when the run goes on.
inline std::optional<int> parseOrEnd(CLI::App& app, int argc, char** argv, int usageStatus) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& done) {
    return app.exit(done);
  } catch (const CLI::ParseError& error) {
    app.exit(error);
    return usageStatus;
  }
  return std::nullopt;
}

}  // namespace vrxtools
