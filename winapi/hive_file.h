// Windows hive files (SOFTWARE, SYSTEM, NTUSER.DAT, BCD) copied into the in-memory registry, each
// at the place Windows mounts it. Values keep their types and bytes as the hive holds them.
#ifndef VRX_WINAPI_HIVE_FILE_H
#define VRX_WINAPI_HIVE_FILE_H

#include <filesystem>

#include "winapi/registry_store.h"

namespace winapi {

// Copies the hive's keys below `mountPoint`. Throws MachineError naming the file (and the key)
// when the hive is not one, is truncated or corrupt, or is beyond the bounds kept for keys,
// values and depth.
void mountHiveFile(RegistryKey& mountPoint, const std::filesystem::path& file);

// A SYSTEM hive at HKLM\SYSTEM, its ControlSet00N named by Select\Current also as
// CurrentControlSet.
void mountSystemHive(Registry& registry, const std::filesystem::path& file);

// The hive named by its file name (SOFTWARE, SYSTEM, NTUSER.DAT or BCD, any case) at its place;
// false, with nothing read, for any other name.
bool mountNamedHive(Registry& registry, const std::filesystem::path& file);

// Every hive of `dir` (a described machine's hives/) at its place; other files are left alone.
void mountHiveDirectory(Registry& registry, const std::filesystem::path& dir);

}  // namespace winapi

#endif
