// Any bytes as a .reg file merge into a registry or give a MachineError, and nothing else: no
// crash, no other exception, no hang. What merged is exported as regedit exports it and read
// back into the same keys and values. Seeds: tests/winapi/reg/.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string_view>

#include "fuzz/registry_values.h"
#include "winapi/formats/reg_export.h"
#include "winapi/formats/reg_file.h"
#include "winapi/machine/machine.h"

namespace {

// The registry of `hive` exported and read back, or an abort naming the first difference.
void checkRoundTrip(const winapi::Registry& registry, winapi::Hive hive, const char* root) {
  std::ostringstream exported;
  winapi::exportRegistry(registry, winapi::parseRegistryKeyName(root), exported);
  winapi::Registry again;
  winapi::mergeRegFile(again, exported.str(), "exported.reg", 932);
  std::string difference = firstDifference(registry.root(hive), again.root(hive), root);
  if (difference.empty()) return;
  std::cerr << "exported and read back: " << difference << '\n';
  std::abort();
}

}  // namespace

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
  checkRoundTrip(registry, winapi::Hive::LocalMachine, "HKEY_LOCAL_MACHINE");
  checkRoundTrip(registry, winapi::Hive::CurrentUser, "HKEY_CURRENT_USER");
  return 0;
}
