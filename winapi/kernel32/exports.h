// The functions this layer implements, by the DLL that exports them on Windows, for GetProcAddress.
#ifndef VRX_WINAPI_EXPORTS_H
#define VRX_WINAPI_EXPORTS_H

#include <string>

#include "winapi/include/windows.h"

namespace winapi {

// `dll` canonical ("kernel32.dll"); `name` compared exactly. nullptr when not exported.
FARPROC findExport(const std::string& dll, const char* name);

}  // namespace winapi

#endif
