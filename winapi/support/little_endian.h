// Numbers as Windows keeps them in files and registry data: the least significant byte first.
#ifndef VRX_WINAPI_LITTLE_ENDIAN_H
#define VRX_WINAPI_LITTLE_ENDIAN_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace winapi {

// The number in the `width` bytes (at most 4) at `bytes[at]`, which the caller has made sure are
// there.
inline std::uint32_t littleEndian(std::string_view bytes, std::size_t at, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t i = width; i-- > 0;)
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

// The 8-byte number at `bytes[at]`, which the caller has made sure is there.
inline std::uint64_t littleEndian64(std::string_view bytes, std::size_t at) {
  return littleEndian(bytes, at, 4) | std::uint64_t{littleEndian(bytes, at + 4, 4)} << 32;
}

// The number in the `width` bytes (at most 4) at `bytes[at]`; nullopt when they are not all there.
inline std::optional<std::uint32_t> littleEndianWithin(std::string_view bytes, std::uint64_t at,
                                                       std::size_t width) {
  if (at > bytes.size() || width > bytes.size() - at) return std::nullopt;
  return littleEndian(bytes, static_cast<std::size_t>(at), width);
}

// Writes `value` into the `width` bytes (at most 8) at `bytes[at]`, which are there.
inline void putLittleEndian(std::string& bytes, std::size_t at, std::uint64_t value,
                            std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i));
}

}  // namespace winapi

#endif
