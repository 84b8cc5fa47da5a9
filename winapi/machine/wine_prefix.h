// A Wine prefix as a machine: system.reg at HKEY_LOCAL_MACHINE, user.reg at HKEY_CURRENT_USER,
// drive_c/ as C:, and the machine's description read from that registry.
#ifndef VRX_WINAPI_WINE_PREFIX_H
#define VRX_WINAPI_WINE_PREFIX_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

namespace winapi {

class Machine;

bool isWinePrefix(const std::filesystem::path& dir);
// Throws MachineError naming the file (and line) that cannot be read. A prefix runs on the
// host, so its clock is the host's unless `now` (milliseconds since 1970 UTC) is given.
std::shared_ptr<Machine> loadWinePrefix(const std::filesystem::path& dir,
                                        std::optional<std::int64_t> now = std::nullopt);

}  // namespace winapi

#endif
