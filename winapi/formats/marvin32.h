// Marvin32, the keyed 64-bit hash Windows uses to check the entries of a hive's transaction log.
#ifndef VRX_WINAPI_MARVIN32_H
#define VRX_WINAPI_MARVIN32_H

#include <cstdint>
#include <string_view>

namespace winapi {

// The hash of `data` under `seed` (its low 32 bits are the first state word).
std::uint64_t marvin32(std::string_view data, std::uint64_t seed);

}  // namespace winapi

#endif
