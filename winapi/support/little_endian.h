// Numbers as Windows keeps them in files and registry data: the least significant byte first.
#ifndef VRX_WINAPI_LITTLE_ENDIAN_H
#define VRX_WINAPI_LITTLE_ENDIAN_H

#include <cstddef>
#include <cstdint>
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

}  // namespace winapi

#endif
