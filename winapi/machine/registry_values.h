// Typed reads of the values a machine's facts are derived from, each answering nullopt when the
// key or value is missing or not of the type Windows itself reads it as.
#ifndef VRX_WINAPI_REGISTRY_VALUES_H
#define VRX_WINAPI_REGISTRY_VALUES_H

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "winapi/support/registry_store.h"

namespace winapi {

// `path` with `names` appended.
RegistryPath below(RegistryPath path, std::initializer_list<const wchar_t*> names);

const RegistryValue* valueAt(const RegistryKey& root, const RegistryPath& path,
                             const wchar_t* name);

// REG_SZ or REG_EXPAND_SZ, in UTF-8, up to its first NUL: real hives keep bytes after it.
std::optional<std::string> textAt(const RegistryKey& root, const RegistryPath& path,
                                  const wchar_t* name);
// REG_DWORD (4 bytes).
std::optional<std::uint32_t> dwordAt(const RegistryKey& root, const RegistryPath& path,
                                     const wchar_t* name);
// REG_MULTI_SZ, its words in UTF-8, empty ones left out.
std::optional<std::vector<std::string>> wordsAt(const RegistryKey& root, const RegistryPath& path,
                                                const wchar_t* name);
// The value's bytes whatever its type, when there are exactly `size` of them.
std::optional<std::string> bytesAt(const RegistryKey& root, const RegistryPath& path,
                                   const wchar_t* name, std::size_t size);

// A text value's data (REG_SZ, REG_EXPAND_SZ) in UTF-8, up to its first NUL.
std::string textOf(const RegistryValue& value);
bool isText(const RegistryValue& value);

}  // namespace winapi

#endif
