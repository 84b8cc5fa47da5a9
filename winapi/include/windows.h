// The Win32 names the collector uses, declared for Linux, where libvrxwinapi answers them
// for the current machine (see machine.h). Only names in use are declared; add a name here
// together with its implementation and its line in exports.cpp.
#ifndef VRX_WINAPI_WINDOWS_H
#define VRX_WINAPI_WINDOWS_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <ctime>

#define WINAPI

typedef int BOOL;
typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef unsigned int UINT;
typedef std::uint32_t ULONG;
typedef long long LONGLONG;
typedef unsigned long long ULONGLONG;
typedef long long INT64;
typedef unsigned long long UINT64;
typedef std::intptr_t INT_PTR;
typedef wchar_t WCHAR;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef const char* LPCCH;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef const WCHAR* LPCWCH;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef BOOL* LPBOOL;
typedef DWORD* LPDWORD;
typedef void* HANDLE;
typedef HANDLE HLOCAL;
typedef struct HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef INT_PTR (*FARPROC)();
typedef char CHAR;
typedef BYTE BOOLEAN;
typedef unsigned long long DWORDLONG;
typedef std::uintptr_t ULONG_PTR;
typedef ULONG_PTR DWORD_PTR;
typedef ULONG_PTR SIZE_T;
typedef DWORD* PDWORD;

#ifndef __int64
#define __int64 long long
#endif

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define MAX_COMPUTERNAME_LENGTH 15

#define ERROR_SUCCESS 0L
#define ERROR_FILE_NOT_FOUND 2L
#define ERROR_INVALID_HANDLE 6L
#define ERROR_BAD_LENGTH 24L
#define ERROR_GEN_FAILURE 31L
#define ERROR_NOT_SUPPORTED 50L
#define ERROR_INVALID_PARAMETER 87L
#define ERROR_BUFFER_OVERFLOW 111L
#define ERROR_INSUFFICIENT_BUFFER 122L
#define ERROR_MOD_NOT_FOUND 126L
#define ERROR_PROC_NOT_FOUND 127L
#define ERROR_BAD_ARGUMENTS 160L
#define ERROR_INVALID_ORDINAL 182L
#define ERROR_ENVVAR_NOT_FOUND 203L
#define ERROR_MR_MID_NOT_FOUND 317L
#define ERROR_INVALID_FLAGS 1004L
#define ERROR_NO_UNICODE_TRANSLATION 1113L
#define ERROR_OLD_WIN_VERSION 1150L
#define ERROR_RESOURCE_LANG_NOT_FOUND 1815L

#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x00000100
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200
#define FORMAT_MESSAGE_FROM_STRING 0x00000400
#define FORMAT_MESSAGE_FROM_HMODULE 0x00000800
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000
#define FORMAT_MESSAGE_ARGUMENT_ARRAY 0x00002000
#define FORMAT_MESSAGE_MAX_WIDTH_MASK 0x000000FF

#define LANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define MAKELANGID(p, s) ((((WORD)(s)) << 10) | (WORD)(p))

#define DONT_RESOLVE_DLL_REFERENCES 0x00000001
#define LOAD_LIBRARY_AS_DATAFILE 0x00000002
#define LOAD_WITH_ALTERED_SEARCH_PATH 0x00000008
#define LOAD_LIBRARY_AS_IMAGE_RESOURCE 0x00000020
#define LOAD_LIBRARY_SEARCH_SYSTEM32 0x00000800

#define SEM_FAILCRITICALERRORS 0x0001

#define TIME_ZONE_ID_UNKNOWN 0
#define TIME_ZONE_ID_STANDARD 1
#define TIME_ZONE_ID_DAYLIGHT 2
#define TIME_ZONE_ID_INVALID ((DWORD)0xFFFFFFFF)

#define CP_ACP 0
#define CP_UTF8 65001
#define MB_ERR_INVALID_CHARS 0x00000008
#define WC_ERR_INVALID_CHARS 0x00000080

typedef struct _SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
} SYSTEMTIME, *PSYSTEMTIME, *LPSYSTEMTIME;

typedef struct _TIME_ZONE_INFORMATION {
  LONG Bias;
  WCHAR StandardName[32];
  SYSTEMTIME StandardDate;
  LONG StandardBias;
  WCHAR DaylightName[32];
  SYSTEMTIME DaylightDate;
  LONG DaylightBias;
} TIME_ZONE_INFORMATION, *PTIME_ZONE_INFORMATION, *LPTIME_ZONE_INFORMATION;

// Version, processor and memory figures (version.cpp, system_info.cpp, memory_status.cpp).
#define VER_EQUAL 1
#define VER_GREATER 2
#define VER_GREATER_EQUAL 3
#define VER_LESS 4
#define VER_LESS_EQUAL 5
#define VER_AND 6
#define VER_OR 7

#define VER_MINORVERSION 0x0000001
#define VER_MAJORVERSION 0x0000002
#define VER_BUILDNUMBER 0x0000004
#define VER_PLATFORMID 0x0000008
#define VER_SERVICEPACKMINOR 0x0000010
#define VER_SERVICEPACKMAJOR 0x0000020
#define VER_SUITENAME 0x0000040
#define VER_PRODUCT_TYPE 0x0000080

#define VER_PLATFORM_WIN32_NT 2
#define VER_NT_WORKSTATION 0x0000001
#define VER_NT_DOMAIN_CONTROLLER 0x0000002
#define VER_NT_SERVER 0x0000003

#define VER_SUITE_SMALLBUSINESS 0x00000001
#define VER_SUITE_ENTERPRISE 0x00000002
#define VER_SUITE_BACKOFFICE 0x00000004
#define VER_SUITE_COMMUNICATIONS 0x00000008
#define VER_SUITE_TERMINAL 0x00000010
#define VER_SUITE_SMALLBUSINESS_RESTRICTED 0x00000020
#define VER_SUITE_EMBEDDEDNT 0x00000040
#define VER_SUITE_DATACENTER 0x00000080
#define VER_SUITE_SINGLEUSERTS 0x00000100
#define VER_SUITE_PERSONAL 0x00000200
#define VER_SUITE_BLADE 0x00000400
#define VER_SUITE_EMBEDDED_RESTRICTED 0x00000800
#define VER_SUITE_SECURITY_APPLIANCE 0x00001000
#define VER_SUITE_STORAGE_SERVER 0x00002000
#define VER_SUITE_COMPUTE_SERVER 0x00004000
#define VER_SUITE_WH_SERVER 0x00008000

#define PRODUCT_UNDEFINED 0x00000000
#define PRODUCT_PROFESSIONAL 0x00000030

#define PROCESSOR_ARCHITECTURE_INTEL 0
#define PROCESSOR_ARCHITECTURE_IA64 6
#define PROCESSOR_ARCHITECTURE_AMD64 9
#define PROCESSOR_INTEL_PENTIUM 586
#define PROCESSOR_INTEL_IA64 2200
#define PROCESSOR_AMD_X8664 8664

typedef struct _OSVERSIONINFOA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
} OSVERSIONINFOA, *POSVERSIONINFOA, *LPOSVERSIONINFOA;

typedef struct _OSVERSIONINFOEXA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
  WORD wServicePackMajor;
  WORD wServicePackMinor;
  WORD wSuiteMask;
  BYTE wProductType;
  BYTE wReserved;
} OSVERSIONINFOEXA, *POSVERSIONINFOEXA, *LPOSVERSIONINFOEXA;

typedef struct _SYSTEM_INFO {
  union {
    DWORD dwOemId;
    struct {
      WORD wProcessorArchitecture;
      WORD wReserved;
    };
  };
  DWORD dwPageSize;
  LPVOID lpMinimumApplicationAddress;
  LPVOID lpMaximumApplicationAddress;
  DWORD_PTR dwActiveProcessorMask;
  DWORD dwNumberOfProcessors;
  DWORD dwProcessorType;
  DWORD dwAllocationGranularity;
  WORD wProcessorLevel;
  WORD wProcessorRevision;
} SYSTEM_INFO, *LPSYSTEM_INFO;

typedef struct _MEMORYSTATUSEX {
  DWORD dwLength;
  DWORD dwMemoryLoad;
  DWORDLONG ullTotalPhys;
  DWORDLONG ullAvailPhys;
  DWORDLONG ullTotalPageFile;
  DWORDLONG ullAvailPageFile;
  DWORDLONG ullTotalVirtual;
  DWORDLONG ullAvailVirtual;
  DWORDLONG ullAvailExtendedVirtual;
} MEMORYSTATUSEX, *LPMEMORYSTATUSEX;

// psapi.h: sizes in pages, PageSize in bytes.
typedef struct _PERFORMANCE_INFORMATION {
  DWORD cb;
  SIZE_T CommitTotal;
  SIZE_T CommitLimit;
  SIZE_T CommitPeak;
  SIZE_T PhysicalTotal;
  SIZE_T PhysicalAvailable;
  SIZE_T SystemCache;
  SIZE_T KernelTotal;
  SIZE_T KernelPaged;
  SIZE_T KernelNonpaged;
  SIZE_T PageSize;
  DWORD HandleCount;
  DWORD ProcessCount;
  DWORD ThreadCount;
} PERFORMANCE_INFORMATION, *PPERFORMANCE_INFORMATION;

// Performance Data Helper (pdh.cpp), as pdh.h, pdhmsg.h and winperf.h give them.
typedef LONG PDH_STATUS;
typedef HANDLE PDH_HQUERY;
typedef HANDLE PDH_HCOUNTER;

#define PDH_CSTATUS_VALID_DATA ((DWORD)0x00000000)
#define PDH_CSTATUS_NO_MACHINE ((DWORD)0x800007D0)
#define PDH_CSTATUS_NO_INSTANCE ((DWORD)0x800007D1)
#define PDH_MORE_DATA ((DWORD)0x800007D2)
#define PDH_NO_DATA ((DWORD)0x800007D5)
#define PDH_CSTATUS_NO_OBJECT ((DWORD)0xC0000BB8)
#define PDH_CSTATUS_NO_COUNTER ((DWORD)0xC0000BB9)
#define PDH_CSTATUS_INVALID_DATA ((DWORD)0xC0000BBA)
#define PDH_INVALID_HANDLE ((DWORD)0xC0000BBC)
#define PDH_INVALID_ARGUMENT ((DWORD)0xC0000BBD)
#define PDH_CSTATUS_BAD_COUNTERNAME ((DWORD)0xC0000BC0)
#define PDH_INVALID_DATA ((DWORD)0xC0000BC6)
#define PDH_FILE_NOT_FOUND ((DWORD)0xC0000BD1)

#define PDH_VERSION ((DWORD)0x00000503)
#define PDH_FMT_LONG ((DWORD)0x00000100)
#define PDH_FMT_DOUBLE ((DWORD)0x00000200)
#define PDH_FMT_LARGE ((DWORD)0x00000400)
#define PDH_FMT_NOSCALE ((DWORD)0x00001000)
#define PDH_FMT_1000 ((DWORD)0x00002000)
#define PDH_FMT_NOCAP100 ((DWORD)0x00008000)

#define PERF_ELAPSED_TIME 0x30240500

typedef struct _PDH_FMT_COUNTERVALUE {
  DWORD CStatus;
  union {
    LONG longValue;
    double doubleValue;
    LONGLONG largeValue;
    LPCSTR AnsiStringValue;
    LPCWSTR WideStringValue;
  };
} PDH_FMT_COUNTERVALUE, *PPDH_FMT_COUNTERVALUE;

typedef struct _PDH_COUNTER_PATH_ELEMENTS_A {
  LPSTR szMachineName;
  LPSTR szObjectName;
  LPSTR szInstanceName;
  LPSTR szParentInstance;
  DWORD dwInstanceIndex;
  LPSTR szCounterName;
} PDH_COUNTER_PATH_ELEMENTS_A, *PPDH_COUNTER_PATH_ELEMENTS_A;

// The strings that the pointers name follow the record, from DataBuffer on. (The union's
// DataItemPath member is not used here; CounterPath is the larger one and sets the layout.)
typedef struct _PDH_COUNTER_INFO_A {
  DWORD dwLength;
  DWORD dwType;
  DWORD CVersion;
  DWORD CStatus;
  LONG lScale;
  LONG lDefaultScale;
  DWORD_PTR dwUserData;
  DWORD_PTR dwQueryUserData;
  LPSTR szFullPath;
  union {
    PDH_COUNTER_PATH_ELEMENTS_A CounterPath;
    struct {
      LPSTR szMachineName;
      LPSTR szObjectName;
      LPSTR szInstanceName;
      LPSTR szParentInstance;
      DWORD dwInstanceIndex;
      LPSTR szCounterName;
    };
  };
  LPSTR szExplainText;
  DWORD DataBuffer[1];
} PDH_COUNTER_INFO_A, *PPDH_COUNTER_INFO_A;

// The registry (registry.cpp) and the process (process.cpp).
typedef LONG LSTATUS;
typedef DWORD REGSAM;
typedef BYTE* LPBYTE;
typedef BOOL* PBOOL;
typedef struct HKEY__* HKEY;
typedef HKEY* PHKEY;

typedef struct _FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
} FILETIME, *PFILETIME, *LPFILETIME;

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

#define ERROR_ACCESS_DENIED 5L
#define ERROR_BAD_PATHNAME 161L
#define ERROR_MORE_DATA 234L
#define ERROR_NO_MORE_ITEMS 259L

// The Microsoft C runtime's time functions (c_runtime_time.cpp).
typedef int errno_t;
typedef long long __time64_t;

extern "C" {

DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD dwErrCode);
UINT WINAPI SetErrorMode(UINT uMode);

DWORD WINAPI GetEnvironmentVariableA(LPCSTR lpName, LPSTR lpBuffer, DWORD nSize);
BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize);
UINT WINAPI GetSystemDirectoryA(LPSTR lpBuffer, UINT uSize);
UINT WINAPI GetSystemWindowsDirectoryA(LPSTR lpBuffer, UINT uSize);

void WINAPI GetSystemTime(LPSYSTEMTIME lpSystemTime);
void WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime);
DWORD WINAPI GetTimeZoneInformation(LPTIME_ZONE_INFORMATION lpTimeZoneInformation);

DWORD WINAPI FormatMessageA(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId, DWORD dwLanguageId,
                            LPSTR lpBuffer, DWORD nSize, va_list* Arguments);
HLOCAL WINAPI LocalFree(HLOCAL hMem);

HMODULE WINAPI LoadLibraryExA(LPCSTR lpLibFileName, HANDLE hFile, DWORD dwFlags);
HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName);
HMODULE WINAPI GetModuleHandleA(LPCSTR lpModuleName);
FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName);
BOOL WINAPI FreeLibrary(HMODULE hLibModule);

int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWCH lpWideCharStr, int cchWideChar,
                               LPSTR lpMultiByteStr, int cbMultiByte, LPCCH lpDefaultChar,
                               LPBOOL lpUsedDefaultChar);
int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCCH lpMultiByteStr, int cbMultiByte,
                               LPWSTR lpWideCharStr, int cchWideChar);

BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA lpVersionInformation);
BOOL WINAPI VerifyVersionInfoA(LPOSVERSIONINFOEXA lpVersionInformation, DWORD dwTypeMask,
                               DWORDLONG dwlConditionMask);
ULONGLONG WINAPI VerSetConditionMask(ULONGLONG ConditionMask, DWORD TypeMask, BYTE Condition);
BOOL WINAPI GetProductInfo(DWORD dwOSMajorVersion, DWORD dwOSMinorVersion, DWORD dwSpMajorVersion,
                           DWORD dwSpMinorVersion, PDWORD pdwReturnedProductType);
void WINAPI GetSystemInfo(LPSYSTEM_INFO lpSystemInfo);
BOOL WINAPI GlobalMemoryStatusEx(LPMEMORYSTATUSEX lpBuffer);
BOOL WINAPI GetPerformanceInfo(PPERFORMANCE_INFORMATION pPerformanceInformation, DWORD cb);

PDH_STATUS WINAPI PdhMakeCounterPathA(PPDH_COUNTER_PATH_ELEMENTS_A pCounterPathElements,
                                      LPSTR szFullPathBuffer, LPDWORD pcchBufferSize,
                                      DWORD dwFlags);
PDH_STATUS WINAPI PdhOpenQueryA(LPCSTR szDataSource, DWORD_PTR dwUserData, PDH_HQUERY* phQuery);
PDH_STATUS WINAPI PdhAddCounterA(PDH_HQUERY hQuery, LPCSTR szFullCounterPath, DWORD_PTR dwUserData,
                                 PDH_HCOUNTER* phCounter);
PDH_STATUS WINAPI PdhGetCounterInfoA(PDH_HCOUNTER hCounter, BOOLEAN bRetrieveExplainText,
                                     LPDWORD pdwBufferSize, PPDH_COUNTER_INFO_A lpBuffer);
PDH_STATUS WINAPI PdhCollectQueryData(PDH_HQUERY hQuery);
PDH_STATUS WINAPI PdhGetFormattedCounterValue(PDH_HCOUNTER hCounter, DWORD dwFormat,
                                              LPDWORD lpdwType, PPDH_FMT_COUNTERVALUE pValue);
PDH_STATUS WINAPI PdhRemoveCounter(PDH_HCOUNTER hCounter);
PDH_STATUS WINAPI PdhCloseQuery(PDH_HQUERY hQuery);

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
DWORD WINAPI ExpandEnvironmentStringsA(LPCSTR lpSrc, LPSTR lpDst, DWORD nSize);
HANDLE WINAPI GetCurrentProcess();
BOOL WINAPI IsWow64Process(HANDLE hProcess, PBOOL Wow64Process);

__time64_t _time64(__time64_t* destTime);
void _tzset();
errno_t _get_timezone(long* seconds);
errno_t _get_daylight(int* hours);
struct tm* _localtime64(const __time64_t* sourceTime);

// The C runtime's getenv as the machine's process sees it: names compared without regard to
// case, values in the machine's ANSI code page. The pointer stays valid until the environment
// changes (another machine is made current).
char* vrx_getenv(const char* name) noexcept;

}  // extern "C"

// The user name (user_name.cpp); the Net API, COM, OLE Automation and WMI are declared by the
// headers included after it, as <lm.h>, <objbase.h>, <oleauto.h>, <wbemidl.h> and <comdef.h>
// declare them on Windows.
#define ERROR_BAD_NETPATH 53L
#define ERROR_INVALID_LEVEL 124L
#define ERROR_NONE_MAPPED 1332L
#define RPC_S_SERVER_UNAVAILABLE 1722L

extern "C" {
BOOL WINAPI GetUserNameA(LPSTR lpBuffer, LPDWORD pcbBuffer);
}  // extern "C"

#include "winapi/include/comdef.h"
#include "winapi/include/lm.h"
#include "winapi/include/objbase.h"
#include "winapi/include/oleauto.h"
#include "winapi/include/wbemidl.h"

// SetupAPI (setupapi.cpp), version.dll (file_version.cpp), WOW64 file-system redirection
// (fs_redirection.cpp) and the page files of psapi and ntdll (page_files.cpp).
typedef void* PVOID;
typedef char* PSTR;
typedef const char* PCSTR;
typedef UINT* PUINT;
typedef ULONG* PULONG;
typedef PVOID HINF;

#define INVALID_HANDLE_VALUE ((HANDLE)(INT_PTR)-1)

#define ERROR_INVALID_FUNCTION 1L
#define ERROR_PATH_NOT_FOUND 3L
#define ERROR_INVALID_DATA 13L
#define ERROR_NOACCESS 998L
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812L
#define ERROR_RESOURCE_TYPE_NOT_FOUND 1813L
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814L

#define ERROR_EXPECTED_SECTION_NAME 0xE0000000
#define ERROR_BAD_SECTION_NAME_LINE 0xE0000001
#define ERROR_SECTION_NAME_TOO_LONG 0xE0000002
#define ERROR_WRONG_INF_STYLE 0xE0000100
#define ERROR_SECTION_NOT_FOUND 0xE0000101
#define ERROR_LINE_NOT_FOUND 0xE0000102
#define ERROR_CLASS_MISMATCH 0xE0000201

#define INF_STYLE_NONE 0x00000000
#define INF_STYLE_OLDNT 0x00000001
#define INF_STYLE_WIN4 0x00000002
#define INF_STYLE_CACHE_ENABLE 0x00000010
#define INF_STYLE_CACHE_DISABLE 0x00000020
#define INF_STYLE_CACHE_IGNORE 0x00000040
#define MAX_INF_STRING_LENGTH 4096

typedef struct _INFCONTEXT {
  PVOID Inf;
  PVOID CurrentInf;
  UINT Section;
  UINT Line;
} INFCONTEXT, *PINFCONTEXT;

#define VS_FFI_SIGNATURE 0xFEEF04BDL

typedef struct tagVS_FIXEDFILEINFO {
  DWORD dwSignature;
  DWORD dwStrucVersion;
  DWORD dwFileVersionMS;
  DWORD dwFileVersionLS;
  DWORD dwProductVersionMS;
  DWORD dwProductVersionLS;
  DWORD dwFileFlagsMask;
  DWORD dwFileFlags;
  DWORD dwFileOS;
  DWORD dwFileType;
  DWORD dwFileSubtype;
  DWORD dwFileDateMS;
  DWORD dwFileDateLS;
} VS_FIXEDFILEINFO;

// psapi.h: sizes in pages.
typedef struct _ENUM_PAGE_FILE_INFORMATION {
  DWORD cb;
  DWORD Reserved;
  SIZE_T TotalSize;
  SIZE_T TotalInUse;
  SIZE_T PeakUsage;
} ENUM_PAGE_FILE_INFORMATION, *PENUM_PAGE_FILE_INFORMATION;

typedef BOOL (*PENUM_PAGE_FILE_CALLBACKA)(LPVOID pContext,
                                          PENUM_PAGE_FILE_INFORMATION pPageFileInfo,
                                          LPCSTR lpFilename);

extern "C" {
HINF WINAPI SetupOpenInfFileA(PCSTR FileName, PCSTR InfClass, DWORD InfStyle, PUINT ErrorLine);
void WINAPI SetupCloseInfFile(HINF InfHandle);
BOOL WINAPI SetupFindFirstLineA(HINF InfHandle, PCSTR Section, PCSTR Key, PINFCONTEXT Context);
LONG WINAPI SetupGetLineCountA(HINF InfHandle, PCSTR Section);
BOOL WINAPI SetupGetLineByIndexA(HINF InfHandle, PCSTR Section, DWORD Index, PINFCONTEXT Context);
BOOL WINAPI SetupGetLineTextA(PINFCONTEXT Context, HINF InfHandle, PCSTR Section, PCSTR Key,
                              PSTR ReturnBuffer, DWORD ReturnBufferSize, PDWORD RequiredSize);
BOOL WINAPI SetupGetStringFieldA(PINFCONTEXT Context, DWORD FieldIndex, PSTR ReturnBuffer,
                                 DWORD ReturnBufferSize, PDWORD RequiredSize);

DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR lptstrFilename, LPDWORD lpdwHandle);
BOOL WINAPI GetFileVersionInfoA(LPCSTR lptstrFilename, DWORD dwHandle, DWORD dwLen, LPVOID lpData);
BOOL WINAPI VerQueryValueA(LPCVOID pBlock, LPCSTR lpSubBlock, LPVOID* lplpBuffer, PUINT puLen);

BOOL WINAPI Wow64DisableWow64FsRedirection(PVOID* OldValue);
BOOL WINAPI Wow64RevertWow64FsRedirection(PVOID OlValue);

BOOL WINAPI EnumPageFilesA(PENUM_PAGE_FILE_CALLBACKA pCallBackRoutine, LPVOID pContext);
// ntdll's native call, found through GetProcAddress; the result is an NTSTATUS.
LONG WINAPI ZwQuerySystemInformation(ULONG SystemInformationClass, PVOID SystemInformation,
                                     ULONG SystemInformationLength, PULONG ReturnLength);
}  // extern "C"

// Plug-in code calls getenv (or std::getenv) and must read the machine, not the Linux process.
// <cstdlib> comes first so that its own declarations keep their names.
#include <cstdlib>
namespace std {
using ::vrx_getenv;
}
#define getenv vrx_getenv

#endif
