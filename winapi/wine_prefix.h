// A Wine prefix as a machine: system.reg at HKEY_LOCAL_MACHINE, user.reg at HKEY_CURRENT_USER,
// drive_c/ as C:, and the machine's description read from that registry.
#ifndef VRX_WINAPI_WINE_PREFIX_H
#define VRX_WINAPI_WINE_PREFIX_H

#include <filesystem>
#include <memory>

namespace winapi {

class Machine;

bool isWinePrefix(const std::filesystem::path& dir);
// Throws MachineError naming the file (and line) that cannot be read.
std::shared_ptr<Machine> loadWinePrefix(const std::filesystem::path& dir);

}  // namespace winapi

#endif
