#include <windows.h>

#include <cerrno>
#include <stdexcept>

#include "tools/vrxhost/platform.h"

namespace vrxhost {

std::string pluginFileName() { return "installedapps.dll"; }

bool replaceFile(const std::string& from, const std::string& to) {
  if (MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  errno = EACCES;
  return false;
}

void presentMachine(const Options& options) {
  if (!options.machine.empty() || !options.user.empty() || !options.now.empty() ||
      options.partition != 0)
    throw std::invalid_argument(
        "--machine, --partition, --user and --now are for Linux; on Windows vrxhost inventories "
        "the machine it runs on, at its own time");
}

std::vector<std::string> machineWarnings() { return {}; }

std::string machineReadingNote() { return ""; }

std::function<void(std::ostream&)> registryExport(const Options&) {
  throw std::invalid_argument(
      "--export-registry is for Linux, where it reads a machine directory; on Windows vrxhost "
      "inventories the machine it runs on");
}

}  // namespace vrxhost
