// Windows hive files (SOFTWARE, SYSTEM, NTUSER.DAT, BCD) copied into the in-memory registry, each
// at the place Windows mounts it. Values keep their types and bytes as the hive holds them. A
// dirty hive is read with its transaction logs replayed (see hive_replay.h).
#ifndef VRX_WINAPI_HIVE_FILE_H
#define VRX_WINAPI_HIVE_FILE_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "winapi/machine/hive_replay.h"
#include "winapi/support/registry_store.h"

namespace winapi {

// What reading a hive told beyond its keys.
struct HiveReading {
  // When the hive was last written, as a FILETIME: the later of its base block's time stamp and
  // its newest key's last write (Windows 8.1 and later leave the former as the hive was made);
  // 0 when neither is set.
  std::uint64_t lastWritten = 0;
  // Lines for the log, each naming the hive file.
  std::vector<std::string> warnings;

  // Takes in the reading of another hive of the same machine.
  void add(const HiveReading& other);
};

// Copies the hive's keys below `mountPoint`. Throws MachineError naming the file (and the key)
// when the hive is not one, is truncated or corrupt, or is beyond the bounds kept for keys,
// values and depth.
HiveReading mountHiveFile(RegistryKey& mountPoint, const HiveLocation& file);

// A hive the machine can do without (SAM, BCD), at parent\name when it reads whole; one that
// cannot be read is left out, with a warning that names it.
HiveReading mountOptionalHive(RegistryKey& parent, const std::wstring& name,
                              const HiveLocation& file);

// A SYSTEM hive at HKLM\SYSTEM, its ControlSet00N named by Select\Current also as
// CurrentControlSet.
HiveReading mountSystemHive(Registry& registry, const HiveLocation& file);

// The hive named by its file name (SOFTWARE, SYSTEM, NTUSER.DAT or BCD, any case) at its place;
// nullopt, with nothing read, for any other name.
std::optional<HiveReading> mountNamedHive(Registry& registry, const HiveLocation& file);

// The same for a hive file of this host.
HiveReading mountHiveFile(RegistryKey& mountPoint, const std::filesystem::path& file);
std::optional<HiveReading> mountNamedHive(Registry& registry, const std::filesystem::path& file);

// Every hive of `dir` (a described machine's hives/) at its place; other files are left alone.
HiveReading mountHiveDirectory(Registry& registry, const std::filesystem::path& dir);

}  // namespace winapi

#endif
