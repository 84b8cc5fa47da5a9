// Performance Data Helper as <pdh.h> and <winperf.h> declare it, as far as the collector uses it
// (pdh.cpp); its status codes are in pdhmsg.h.

#ifndef VRX_WINAPI_PDH_H
#define VRX_WINAPI_PDH_H

#include "winapi/include/windows.h"

typedef LONG PDH_STATUS;
typedef HANDLE PDH_HQUERY;
typedef HANDLE PDH_HCOUNTER;

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

extern "C" {
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
}  // extern "C"

#endif
