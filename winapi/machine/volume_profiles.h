// The user profiles of an offline Windows volume, and which of them is the volume's user: the
// one Windows would offer at its logon screen.
#ifndef VRX_WINAPI_VOLUME_PROFILES_H
#define VRX_WINAPI_VOLUME_PROFILES_H

#include <optional>
#include <string>
#include <vector>

#include "winapi/files/machine_files.h"
#include "winapi/support/registry_store.h"

namespace winapi {

struct VolumeProfile {
  std::string name;           // the profile folder's name, which is its user's
  std::string folder;         // as Windows names it: "C:\\Users\\alice"
  std::string hive;           // its NTUSER.DAT: "C:\\Users\\alice\\NTUSER.DAT"
  std::uint64_t lastWritten;  // when NTUSER.DAT was last written, a FILETIME
};

// The profiles of the accounts that ProfileList (in `localMachine`'s SOFTWARE) names, whose
// NTUSER.DAT is on the volume; when it names none, the folders of its profiles directory
// (C:\Users when it does not say) that hold one.
std::vector<VolumeProfile> volumeProfiles(const RegistryKey& localMachine,
                                          const MachineFiles& volume);

// The last interactive user's profile (LogonUI's LastLoggedOnUser; before Vista, Winlogon's
// DefaultUserName) when there is one, else the one whose NTUSER.DAT was written last; nullopt
// when the volume has no profile.
std::optional<VolumeProfile> defaultProfile(const RegistryKey& localMachine,
                                            const MachineFiles& volume);

// The profile whose folder is `name` in any case; a MachineError naming the volume and its
// profiles when there is none.
VolumeProfile namedProfile(const RegistryKey& localMachine, const MachineFiles& volume,
                           const std::string& name);

}  // namespace winapi

#endif
