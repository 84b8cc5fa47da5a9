// An offline volume that is the twin of the described machine examples/machines/registry-fixes:
// its .reg file as the SOFTWARE hive, its computer name in the SYSTEM hive.
#ifndef VRX_TESTS_VRXHOST_VOLUME_TWIN_H
#define VRX_TESTS_VRXHOST_VOLUME_TWIN_H

#include "tests/vrxhost/vrxhost_fixture.h"
#include "tests/winapi/test_hive.h"

inline fs::path registryFixesMachine() {
  return fs::path(VRX_SOURCE_DIR) / "examples/machines/registry-fixes";
}

inline void makeVolumeTwin(const fs::path& volume) {
  const fs::path config = volume / "Windows/System32/config";
  fs::create_directories(config);
  std::string reg = readFile(registryFixesMachine() / "registry/10-updates.reg");
  reg = reg.substr(reg.find('\n') + 1);  // the header line; writeHive writes its own
  winapi::writeHive((config / "SOFTWARE").string(), "HKEY_LOCAL_MACHINE\\SOFTWARE", reg);
  winapi::writeHive((config / "SYSTEM").string(), "HKEY_LOCAL_MACHINE\\SYSTEM",
                    "[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\n\"Current\"=dword:00000001\n\n"
                    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\ComputerName\\"
                    "ComputerName]\n\"ComputerName\"=\"SRV-2003\"\n\n");
}

#endif
