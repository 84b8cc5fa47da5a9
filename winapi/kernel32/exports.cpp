// One line per implemented function; a new API area adds its functions here.
#include "winapi/kernel32/exports.h"

#include <string_view>
#include <unordered_map>

#include "winapi/include/lm.h"
#include "winapi/include/pdh.h"
#include "winapi/include/psapi.h"
#include "winapi/include/setupapi.h"

namespace winapi {

namespace {

struct Export {
  const char* dll;
  const char* name;
  FARPROC address;
};

// Through void(*)(), the type that converts to any function pointer without a warning.
#define VRX_EXPORT(dll, function) \
  { dll, #function, reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&function)) }

const Export kExports[] = {
    VRX_EXPORT("advapi32.dll", GetUserNameA),
    VRX_EXPORT("advapi32.dll", RegCloseKey),
    VRX_EXPORT("advapi32.dll", RegEnumKeyExA),
    VRX_EXPORT("advapi32.dll", RegEnumValueA),
    VRX_EXPORT("advapi32.dll", RegOpenKeyExA),
    VRX_EXPORT("advapi32.dll", RegQueryInfoKeyA),
    VRX_EXPORT("advapi32.dll", RegQueryValueExA),
    VRX_EXPORT("kernel32.dll", ExpandEnvironmentStringsA),
    VRX_EXPORT("kernel32.dll", FormatMessageA),
    VRX_EXPORT("kernel32.dll", FreeLibrary),
    VRX_EXPORT("kernel32.dll", GetComputerNameA),
    VRX_EXPORT("kernel32.dll", GetCurrentProcess),
    VRX_EXPORT("kernel32.dll", GetEnvironmentVariableA),
    VRX_EXPORT("kernel32.dll", GetLastError),
    VRX_EXPORT("kernel32.dll", GetLocalTime),
    VRX_EXPORT("kernel32.dll", GetModuleHandleA),
    VRX_EXPORT("kernel32.dll", GetProcAddress),
    VRX_EXPORT("kernel32.dll", GetProductInfo),
    VRX_EXPORT("kernel32.dll", GetSystemDirectoryA),
    VRX_EXPORT("kernel32.dll", GetSystemInfo),
    VRX_EXPORT("kernel32.dll", GetSystemTime),
    VRX_EXPORT("kernel32.dll", GetSystemWindowsDirectoryA),
    VRX_EXPORT("kernel32.dll", GetTimeZoneInformation),
    VRX_EXPORT("kernel32.dll", GetVersionExA),
    VRX_EXPORT("kernel32.dll", GlobalMemoryStatusEx),
    VRX_EXPORT("kernel32.dll", IsWow64Process),
    VRX_EXPORT("kernel32.dll", LoadLibraryA),
    VRX_EXPORT("kernel32.dll", LoadLibraryExA),
    VRX_EXPORT("kernel32.dll", LocalFree),
    VRX_EXPORT("kernel32.dll", MultiByteToWideChar),
    VRX_EXPORT("kernel32.dll", SetErrorMode),
    VRX_EXPORT("kernel32.dll", SetLastError),
    VRX_EXPORT("kernel32.dll", VerSetConditionMask),
    VRX_EXPORT("kernel32.dll", VerifyVersionInfoA),
    VRX_EXPORT("kernel32.dll", WideCharToMultiByte),
    VRX_EXPORT("kernel32.dll", Wow64DisableWow64FsRedirection),
    VRX_EXPORT("kernel32.dll", Wow64RevertWow64FsRedirection),
    VRX_EXPORT("netapi32.dll", NetApiBufferFree),
    VRX_EXPORT("netapi32.dll", NetUserEnum),
    VRX_EXPORT("netapi32.dll", NetWkstaUserEnum),
    VRX_EXPORT("ntdll.dll", ZwQuerySystemInformation),
    VRX_EXPORT("ole32.dll", CoCreateInstance),
    VRX_EXPORT("ole32.dll", CoInitializeEx),
    VRX_EXPORT("ole32.dll", CoInitializeSecurity),
    VRX_EXPORT("ole32.dll", CoSetProxyBlanket),
    VRX_EXPORT("ole32.dll", CoUninitialize),
    VRX_EXPORT("oleaut32.dll", SysAllocString),
    VRX_EXPORT("oleaut32.dll", SysFreeString),
    VRX_EXPORT("oleaut32.dll", SysStringLen),
    VRX_EXPORT("oleaut32.dll", VariantClear),
    VRX_EXPORT("oleaut32.dll", VariantInit),
    VRX_EXPORT("oleaut32.dll", VariantTimeToSystemTime),
    VRX_EXPORT("psapi.dll", EnumPageFilesA),
    VRX_EXPORT("psapi.dll", GetPerformanceInfo),
    VRX_EXPORT("pdh.dll", PdhAddCounterA),
    VRX_EXPORT("pdh.dll", PdhCloseQuery),
    VRX_EXPORT("pdh.dll", PdhCollectQueryData),
    VRX_EXPORT("pdh.dll", PdhGetCounterInfoA),
    VRX_EXPORT("pdh.dll", PdhGetFormattedCounterValue),
    VRX_EXPORT("pdh.dll", PdhMakeCounterPathA),
    VRX_EXPORT("pdh.dll", PdhOpenQueryA),
    VRX_EXPORT("pdh.dll", PdhRemoveCounter),
    VRX_EXPORT("setupapi.dll", SetupCloseInfFile),
    VRX_EXPORT("setupapi.dll", SetupFindFirstLineA),
    VRX_EXPORT("setupapi.dll", SetupGetLineByIndexA),
    VRX_EXPORT("setupapi.dll", SetupGetLineCountA),
    VRX_EXPORT("setupapi.dll", SetupGetLineTextA),
    VRX_EXPORT("setupapi.dll", SetupGetStringFieldA),
    VRX_EXPORT("setupapi.dll", SetupOpenInfFileA),
    VRX_EXPORT("version.dll", GetFileVersionInfoA),
    VRX_EXPORT("version.dll", GetFileVersionInfoSizeA),
    VRX_EXPORT("version.dll", VerQueryValueA),
};

#undef VRX_EXPORT

}  // namespace

FARPROC findExport(const std::string& dll, const char* name) {
  // Asked before every registry key the collector opens: indexed by name once.
  static const std::unordered_multimap<std::string_view, const Export*> byName = [] {
    std::unordered_multimap<std::string_view, const Export*> index;
    for (const Export& entry : kExports) index.emplace(entry.name, &entry);
    return index;
  }();
  auto [entry, end] = byName.equal_range(name);
  for (; entry != end; ++entry)
    if (dll == entry->second->dll) return entry->second->address;
  return nullptr;
}

}  // namespace winapi
