// One line per implemented function; a new API area adds its functions here.
#include "winapi/exports.h"

#include <cstring>

namespace winapi {

namespace {

struct Export {
    const char* dll;
    const char* name;
    FARPROC address;
};

// Through void(*)(), the type that converts to any function pointer without a warning.
#define VRX_EXPORT(dll, function) \
    {dll, #function, reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&function))}

const Export kExports[] = {
    VRX_EXPORT("kernel32.dll", FormatMessageA),
    VRX_EXPORT("kernel32.dll", FreeLibrary),
    VRX_EXPORT("kernel32.dll", GetComputerNameA),
    VRX_EXPORT("kernel32.dll", GetEnvironmentVariableA),
    VRX_EXPORT("kernel32.dll", GetLastError),
    VRX_EXPORT("kernel32.dll", GetLocalTime),
    VRX_EXPORT("kernel32.dll", GetModuleHandleA),
    VRX_EXPORT("kernel32.dll", GetProcAddress),
    VRX_EXPORT("kernel32.dll", GetSystemDirectoryA),
    VRX_EXPORT("kernel32.dll", GetSystemTime),
    VRX_EXPORT("kernel32.dll", GetSystemWindowsDirectoryA),
    VRX_EXPORT("kernel32.dll", GetTimeZoneInformation),
    VRX_EXPORT("kernel32.dll", LoadLibraryA),
    VRX_EXPORT("kernel32.dll", LoadLibraryExA),
    VRX_EXPORT("kernel32.dll", LocalFree),
    VRX_EXPORT("kernel32.dll", MultiByteToWideChar),
    VRX_EXPORT("kernel32.dll", SetErrorMode),
    VRX_EXPORT("kernel32.dll", SetLastError),
    VRX_EXPORT("kernel32.dll", WideCharToMultiByte),
};

#undef VRX_EXPORT

}  // namespace

FARPROC findExport(const std::string& dll, const char* name) {
    for (const Export& entry : kExports)
        if (dll == entry.dll && std::strcmp(name, entry.name) == 0) return entry.address;
    return nullptr;
}

}  // namespace winapi
