// Registry keys named as Windows names them: a root key in full (HKEY_LOCAL_MACHINE) or
// abbreviated (HKLM), then the sub-keys below it, separated by '\'. A machine keeps two hives;
// HKEY_CLASSES_ROOT shows the machine's classes, and the other roots are not kept.
#ifndef VRX_WINAPI_REGISTRY_KEY_NAMES_H
#define VRX_WINAPI_REGISTRY_KEY_NAMES_H

#include <string>
#include <string_view>

#include "winapi/support/registry_store.h"

namespace winapi {

struct RootKey {
  std::wstring_view name;          // in full
  std::wstring_view abbreviation;  // empty for a root without one
  bool kept;                       // whether a machine has it; where, below
  Hive hive;
  RegistryPath below;  // its place below the hive's root
};

// The root key `name` names, in full or abbreviated, in any case; nullptr for none.
const RootKey* findRootKey(std::wstring_view name);

struct RegistryKeyName {
  const RootKey* root;
  RegistryPath path;  // below the root, as spelled

  // The name with the root in full, for messages.
  std::string text() const;
};

// "HKLM\SOFTWARE\Vendor" (UTF-8). Throws std::invalid_argument for a text that is no key's name:
// an unknown root or an empty part.
RegistryKeyName parseRegistryKeyName(const std::string& text);

}  // namespace winapi

#endif
