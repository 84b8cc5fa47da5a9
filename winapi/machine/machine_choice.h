// What the user chooses about the machine read: its user, its clock, and where in a disk image
// its Windows is.
#ifndef VRX_WINAPI_MACHINE_CHOICE_H
#define VRX_WINAPI_MACHINE_CHOICE_H

#include <cstdint>
#include <optional>
#include <string>

namespace winapi {

struct MachineChoice {
  // A profile of a Windows volume, by its folder's name; empty for the volume's last user.
  std::string user;
  // The machine's clock in place of its own, in milliseconds since 1970 UTC.
  std::optional<std::int64_t> now;
  // The Windows partition of a disk image, numbered as its partition table numbers it.
  std::optional<unsigned> partition;
};

}  // namespace winapi

#endif
