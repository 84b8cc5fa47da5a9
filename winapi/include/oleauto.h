// OLE Automation as <oleauto.h> declares it, as far as the collector uses it: BSTRs, the
// VARIANTs that WMI fills, and automation dates.

// First, and outside the guard: windows.h declares the basic types and then includes this file.
#include "winapi/include/windows.h"

#ifndef VRX_WINAPI_OLEAUTO_H
#define VRX_WINAPI_OLEAUTO_H

#include "winapi/include/objbase.h"

typedef OLECHAR* BSTR;
typedef int INT;
typedef double DOUBLE;
typedef double DATE;  // days since 1899-12-30; the fraction is the time of day
typedef unsigned short VARTYPE;

// The types this layer hands out in a VARIANT.
enum VARENUM { VT_EMPTY = 0, VT_I4 = 3, VT_DATE = 7, VT_BSTR = 8 };

typedef struct tagVARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONG lVal;
    DATE date;
    BSTR bstrVal;
  };
} VARIANT, VARIANTARG;

#define DISP_E_BADVARTYPE ((HRESULT)0x80020008L)

extern "C" {

BSTR WINAPI SysAllocString(const OLECHAR* psz);
void WINAPI SysFreeString(BSTR bstrString);
UINT WINAPI SysStringLen(BSTR pbstr);

void WINAPI VariantInit(VARIANTARG* pvarg);
HRESULT WINAPI VariantClear(VARIANTARG* pvarg);
INT WINAPI VariantTimeToSystemTime(DOUBLE vtime, LPSYSTEMTIME lpSystemTime);

}  // extern "C"

#endif
