// The registry files of a Wine prefix (system.reg, user.reg, userdef.reg): "WINE REGISTRY
// Version 2" text, one [key] section after another with its values, keys relative to the root the
// header names. Keys marked #link are symbolic links; they read as the key they point at.
#ifndef VRX_WINAPI_WINE_REG_FILE_H
#define VRX_WINAPI_WINE_REG_FILE_H

#include <string>
#include <string_view>

#include "winapi/support/registry_store.h"

namespace winapi {

// Merges the keys and values of one file, `bytes` as read, below the root of `hive`. Throws
// MachineError "file:line: problem" for text Wine would not load.
void mergeWineRegFile(Registry& registry, Hive hive, std::string_view bytes,
                      const std::string& file);

}  // namespace winapi

#endif
