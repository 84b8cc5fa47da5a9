// Any bytes as a SYSTEM hive file mount into a registry or give a MachineError, and nothing else:
// no crash, no other exception, no hang. libhivex reads only from a file, so each input is written
// to one in memory (/dev/shm). Seeds: fuzz/seeds/hive/.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "fuzz/registry_values.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/machine.h"

namespace {

// A folder of this process's own, so that parallel fuzzers do not share the file; removed at exit.
class HiveFile {
 public:
  HiveFile() {
    char folder[] = "/dev/shm/vrx_fuzz_hive_XXXXXX";
    if (!mkdtemp(folder)) std::abort();
    folder_ = folder;
  }
  ~HiveFile() {
    std::remove(path().c_str());
    rmdir(folder_.c_str());
  }
  std::string path() const { return folder_ + "/SYSTEM"; }

 private:
  std::string folder_;
};

const HiveFile hiveFile;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::ofstream(hiveFile.path(), std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  winapi::Registry registry;
  try {
    winapi::mountNamedHive(registry, hiveFile.path());
  } catch (const winapi::MachineError&) {
    return 0;
  }
  countValues(registry.root(winapi::Hive::LocalMachine));
  return 0;
}
