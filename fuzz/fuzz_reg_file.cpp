// Any bytes as a .reg file merge into a registry or give a MachineError, and nothing else: no
// crash, no other exception, no hang. Seeds: tests/winapi/reg/.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/registry_values.h"
#include "winapi/machine.h"
#include "winapi/reg_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  winapi::Registry registry;
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    // 932 (Shift JIS) so that REGEDIT4 text goes through a double-byte code page.
    winapi::mergeRegFile(registry, bytes, "fuzz.reg", 932);
  } catch (const winapi::MachineError&) {
    return 0;
  }
  countValues(registry.root(winapi::Hive::LocalMachine));
  countValues(registry.root(winapi::Hive::CurrentUser));
  return 0;
}
