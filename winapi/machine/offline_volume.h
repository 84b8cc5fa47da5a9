// A Windows volume that is not running (a mounted partition or disk image) as a machine: its
// hive files are its registry, its root is drive C:, and its description is read from the hives.
#ifndef VRX_WINAPI_OFFLINE_VOLUME_H
#define VRX_WINAPI_OFFLINE_VOLUME_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "winapi/files/machine_files.h"

namespace winapi {

class Machine;
class Registry;

// A Windows volume wherever it is kept.
struct VolumeSource {
  std::string name;                             // how messages name it: a folder, an image
  std::shared_ptr<const MachineFiles> windows;  // the Windows volume, as drive C:
  std::shared_ptr<const MachineFiles> system;   // the system partition as C:, when not `windows`
  // The machine's drives lettered as its registry (SYSTEM's MountedDevices) assigns them, when
  // they are more than `windows`.
  std::function<std::shared_ptr<const MachineFiles>(const Registry&)> lettered;
};

// A directory holding Windows/System32/config/SOFTWARE, each component in any case.
bool isOfflineVolume(const std::filesystem::path& dir);
// Throws MachineError naming the hive that cannot be read. Nothing on the volume is written.
// The user is the last interactive user's profile (see volume_profiles.h). The machine's clock
// stands at `now` (milliseconds since 1970 UTC) when given, else at the moment the volume
// stopped.
std::shared_ptr<Machine> loadOfflineVolume(const std::filesystem::path& dir,
                                           std::optional<std::int64_t> now = std::nullopt);
// The user is the profile whose folder is named `user`; a MachineError when there is none.
std::shared_ptr<Machine> loadOfflineVolumeAs(const std::filesystem::path& dir,
                                             const std::string& user,
                                             std::optional<std::int64_t> now = std::nullopt);

// The same for a volume anywhere.
std::shared_ptr<Machine> loadWindowsVolume(const VolumeSource& source, const std::string& user,
                                           std::optional<std::int64_t> now);

}  // namespace winapi

#endif
