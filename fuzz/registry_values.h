// For the registry fuzzers and the tests of the registry readers: walks what a parser built, so
// that every key and value made is touched, and tells two registries apart.
#ifndef VRX_FUZZ_REGISTRY_VALUES_H
#define VRX_FUZZ_REGISTRY_VALUES_H

#include <cstddef>
#include <string>

#include "winapi/formats/reg_text.h"
#include "winapi/support/registry_store.h"

inline std::size_t countValues(const winapi::RegistryKey& key) {
  std::size_t count = key.values().size();
  for (const auto& subKey : key.subKeys()) count += countValues(*subKey);
  return count;
}

// The first place where `b` differs from `a` in the spelling and order of its sub-keys, or in the
// names, order, types and bytes of its values, named below `path`; "" when there is none.
inline std::string firstDifference(const winapi::RegistryKey& a, const winapi::RegistryKey& b,
                                   const std::string& path) {
  if (a.name() != b.name()) return path + ": spelled " + winapi::toUtf8(b.name());
  if (a.values().size() != b.values().size())
    return path + ": " + std::to_string(b.values().size()) + " values, not " +
           std::to_string(a.values().size());
  for (std::size_t i = 0; i < a.values().size(); ++i) {
    const winapi::RegistryValue &x = a.values()[i], &y = b.values()[i];
    std::string value = path + " value \"" + winapi::toUtf8(x.name) + "\"";
    if (x.name.text() != y.name.text()) return value + ": named " + winapi::toUtf8(y.name);
    if (x.type != y.type) return value + ": of type " + std::to_string(y.type);
    if (x.data != y.data) return value + ": other bytes";
  }
  if (a.subKeys().size() != b.subKeys().size())
    return path + ": " + std::to_string(b.subKeys().size()) + " sub-keys, not " +
           std::to_string(a.subKeys().size());
  for (std::size_t i = 0; i < a.subKeys().size(); ++i) {
    const winapi::RegistryKey& subKey = *a.subKeys()[i];
    std::string difference =
        firstDifference(subKey, *b.subKeys()[i], path + "\\" + winapi::toUtf8(subKey.name()));
    if (!difference.empty()) return difference;
  }
  return "";
}

#endif
