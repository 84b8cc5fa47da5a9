// For the registry fuzzers: walks what a parser built, so that every key and value made is
// touched.
#ifndef VRX_FUZZ_REGISTRY_VALUES_H
#define VRX_FUZZ_REGISTRY_VALUES_H

#include <cstddef>

#include "winapi/registry_store.h"

inline std::size_t countValues(const winapi::RegistryKey& key) {
  std::size_t count = key.values().size();
  for (const auto& subKey : key.subKeys()) count += countValues(*subKey);
  return count;
}

#endif
