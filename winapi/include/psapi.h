// Process-status records as <psapi.h> declares them, as far as the collector uses them
// (memory_status.cpp, page_files.cpp).

#ifndef VRX_WINAPI_PSAPI_H
#define VRX_WINAPI_PSAPI_H

#include "winapi/include/windows.h"

// Sizes in pages, PageSize in bytes.
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

// Sizes in pages.
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
BOOL WINAPI GetPerformanceInfo(PPERFORMANCE_INFORMATION pPerformanceInformation, DWORD cb);
BOOL WINAPI EnumPageFilesA(PENUM_PAGE_FILE_CALLBACKA pCallBackRoutine, LPVOID pContext);
}  // extern "C"

#endif
