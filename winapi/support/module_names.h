// How Windows names a DLL: the file name only, without regard to case, ".dll" added when the
// name has no extension (a trailing "." means "no extension").
#ifndef VRX_WINAPI_MODULE_NAMES_H
#define VRX_WINAPI_MODULE_NAMES_H

#include <string>
#include <string_view>

namespace winapi {

// "C:\\Windows\\System32\\PSAPI" -> "psapi.dll"; "x." -> "x".
std::string canonicalDllName(std::string_view name);

}  // namespace winapi

#endif
