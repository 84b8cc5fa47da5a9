// Any bytes as a Wine registry file merge into a registry or give a MachineError, and nothing
// else: no crash, no other exception, no hang. Seeds: tests/winapi/wine_reg/.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/registry_values.h"
#include "winapi/formats/wine_reg_file.h"
#include "winapi/machine/machine.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  winapi::Registry registry;
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    winapi::mergeWineRegFile(registry, winapi::Hive::LocalMachine, bytes, "fuzz.reg");
  } catch (const winapi::MachineError&) {
    return 0;
  }
  countValues(registry.root(winapi::Hive::LocalMachine));
  return 0;
}
