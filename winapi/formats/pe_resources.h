// Resources of a PE image (32- or 64-bit) read from its bytes: DOS header, PE signature,
// optional header, section table, then the resource directory tree (type, name, language).
// Every offset and length is checked against the bytes it lies in.
#ifndef VRX_WINAPI_PE_RESOURCES_H
#define VRX_WINAPI_PE_RESOURCES_H

#include <cstdint>
#include <string_view>

namespace winapi {

constexpr std::uint16_t kVersionResourceType = 16;  // RT_VERSION

struct ResourceLookup {
  std::uint32_t error = 0;  // a Win32 error code; the data is there when it is 0
  std::string_view data;    // within the image
};

// The resource of `type` (by number): its first name, and of that its first language.
// Errors, as the version functions of Windows report them: ERROR_RESOURCE_DATA_NOT_FOUND when
// the bytes are no PE image (headers that are wrong or leave the file), when there is no
// resource directory, or when a data entry points outside the file;
// ERROR_RESOURCE_TYPE_NOT_FOUND, ERROR_RESOURCE_NAME_NOT_FOUND and
// ERROR_RESOURCE_LANG_NOT_FOUND when that level of the tree has no usable entry.
ResourceLookup findResource(std::string_view image, std::uint16_t type);

}  // namespace winapi

#endif
