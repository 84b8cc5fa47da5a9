// Any bytes as machine.json give a machine or a MachineError, and nothing else: no crash, no
// other exception, no hang. A machine that loads is also asked for its clock and zone, whose
// rules come straight from the file.
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

namespace {

// One machine directory for the whole run; each input overwrites its machine.json.
class FuzzDirectory {
 public:
  FuzzDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "vrx-fuzz-machine-XXXXXX").string();
    if (!mkdtemp(pattern.data())) abort();
    path = pattern;
  }
  ~FuzzDirectory() {
    std::error_code error;
    std::filesystem::remove_all(path, error);
  }
  std::string path;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FuzzDirectory directory;
  std::ofstream(directory.path + "/machine.json", std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  try {
    winapi::setCurrentMachine(winapi::Machine::load(directory.path));
  } catch (const winapi::MachineError&) {
    return 0;
  }
  TIME_ZONE_INFORMATION zone;
  GetTimeZoneInformation(&zone);
  SYSTEMTIME local;
  GetLocalTime(&local);
  winapi::setCurrentMachine(nullptr);
  return 0;
}
