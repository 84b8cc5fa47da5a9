// The registry functions of advapi32 as <winreg.h> declares them, as far as the collector uses
// them (registry.cpp).

// First, and outside the guard: windows.h declares the basic types and then includes this file.
#include "winapi/include/windows.h"

#ifndef VRX_WINAPI_WINREG_H
#define VRX_WINAPI_WINREG_H

typedef LONG LSTATUS;
typedef DWORD REGSAM;
typedef struct HKEY__* HKEY;
typedef HKEY* PHKEY;

#define HKEY_CLASSES_ROOT ((HKEY)(ULONG_PTR)((LONG)0x80000000))
#define HKEY_CURRENT_USER ((HKEY)(ULONG_PTR)((LONG)0x80000001))
#define HKEY_LOCAL_MACHINE ((HKEY)(ULONG_PTR)((LONG)0x80000002))
#define HKEY_USERS ((HKEY)(ULONG_PTR)((LONG)0x80000003))
#define HKEY_PERFORMANCE_DATA ((HKEY)(ULONG_PTR)((LONG)0x80000004))
#define HKEY_CURRENT_CONFIG ((HKEY)(ULONG_PTR)((LONG)0x80000005))

#define KEY_QUERY_VALUE 0x0001
#define KEY_SET_VALUE 0x0002
#define KEY_CREATE_SUB_KEY 0x0004
#define KEY_ENUMERATE_SUB_KEYS 0x0008
#define KEY_NOTIFY 0x0010
#define KEY_WOW64_64KEY 0x0100
#define KEY_WOW64_32KEY 0x0200
#define KEY_READ 0x00020019

#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_DWORD_BIG_ENDIAN 5
#define REG_LINK 6
#define REG_MULTI_SZ 7
#define REG_RESOURCE_LIST 8
#define REG_FULL_RESOURCE_DESCRIPTOR 9
#define REG_RESOURCE_REQUIREMENTS_LIST 10
#define REG_QWORD 11

extern "C" {
LSTATUS WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                             PHKEY phkResult);
LSTATUS WINAPI RegCloseKey(HKEY hKey);
LSTATUS WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass, LPDWORD lpReserved,
                                LPDWORD lpcSubKeys, LPDWORD lpcbMaxSubKeyLen,
                                LPDWORD lpcbMaxClassLen, LPDWORD lpcValues,
                                LPDWORD lpcbMaxValueNameLen, LPDWORD lpcbMaxValueLen,
                                LPDWORD lpcbSecurityDescriptor, PFILETIME lpftLastWriteTime);
LSTATUS WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                             LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                             PFILETIME lpftLastWriteTime);
LSTATUS WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName,
                             LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);
LSTATUS WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                                LPBYTE lpData, LPDWORD lpcbData);
}  // extern "C"

#endif
