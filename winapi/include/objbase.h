// COM as <objbase.h> declares it, as far as the collector uses it: result codes, GUIDs,
// IUnknown, joining a thread to COM, the process's security settings, making an in-process
// object and setting the security of a proxy.

// First, and outside the guard: windows.h declares the basic types and then includes this file.
#include "winapi/include/windows.h"

#ifndef VRX_WINAPI_OBJBASE_H
#define VRX_WINAPI_OBJBASE_H

typedef LONG HRESULT;
typedef WCHAR OLECHAR;
typedef void* PSECURITY_DESCRIPTOR;
typedef void* RPC_AUTH_IDENTITY_HANDLE;

#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)

#define S_OK ((HRESULT)0L)
#define S_FALSE ((HRESULT)1L)
#define E_NOINTERFACE ((HRESULT)0x80004002L)
#define E_POINTER ((HRESULT)0x80004003L)
#define E_OUTOFMEMORY ((HRESULT)0x8007000EL)
#define E_INVALIDARG ((HRESULT)0x80070057L)
#define RPC_E_CHANGED_MODE ((HRESULT)0x80010106L)
#define RPC_E_TOO_LATE ((HRESULT)0x80010119L)
#define REGDB_E_CLASSNOTREG ((HRESULT)0x80040154L)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110L)
#define CO_E_NOTINITIALIZED ((HRESULT)0x800401F0L)

typedef struct _GUID {
  std::uint32_t Data1;
  unsigned short Data2;
  unsigned short Data3;
  unsigned char Data4[8];
} GUID;
typedef GUID IID;
typedef GUID CLSID;
typedef const IID& REFIID;
typedef const CLSID& REFCLSID;

inline bool operator==(const GUID& a, const GUID& b) {
  for (int i = 0; i < 8; ++i)
    if (a.Data4[i] != b.Data4[i]) return false;
  return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
}
inline bool operator!=(const GUID& a, const GUID& b) { return !(a == b); }

struct IUnknown {
  virtual HRESULT QueryInterface(REFIID riid, void** ppvObject) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
};
typedef IUnknown* LPUNKNOWN;

enum tagCOINIT { COINIT_MULTITHREADED = 0x0, COINIT_APARTMENTTHREADED = 0x2 };
enum tagCLSCTX { CLSCTX_INPROC_SERVER = 0x1, CLSCTX_LOCAL_SERVER = 0x4 };
enum tagEOLE_AUTHENTICATION_CAPABILITIES { EOAC_NONE = 0 };

#define RPC_C_AUTHN_LEVEL_DEFAULT 0
#define RPC_C_AUTHN_LEVEL_CALL 3
#define RPC_C_AUTHN_LEVEL_PKT_PRIVACY 6
#define RPC_C_IMP_LEVEL_IMPERSONATE 3
#define RPC_C_IMP_LEVEL_DELEGATE 4
#define RPC_C_AUTHN_WINNT 10
#define RPC_C_AUTHZ_NONE 0

typedef struct tagSOLE_AUTHENTICATION_SERVICE {
  DWORD dwAuthnSvc;
  DWORD dwAuthzSvc;
  OLECHAR* pPrincipalName;
  HRESULT hr;
} SOLE_AUTHENTICATION_SERVICE;

extern "C" {

extern const IID IID_IUnknown;

HRESULT WINAPI CoInitializeEx(LPVOID pvReserved, DWORD dwCoInit);
void WINAPI CoUninitialize();
HRESULT WINAPI CoInitializeSecurity(PSECURITY_DESCRIPTOR pSecDesc, LONG cAuthSvc,
                                    SOLE_AUTHENTICATION_SERVICE* asAuthSvc, void* pReserved1,
                                    DWORD dwAuthnLevel, DWORD dwImpLevel, void* pAuthList,
                                    DWORD dwCapabilities, void* pReserved3);
HRESULT WINAPI CoCreateInstance(REFCLSID rclsid, LPUNKNOWN pUnkOuter, DWORD dwClsContext,
                                REFIID riid, LPVOID* ppv);
HRESULT WINAPI CoSetProxyBlanket(IUnknown* pProxy, DWORD dwAuthnSvc, DWORD dwAuthzSvc,
                                 OLECHAR* pServerPrincName, DWORD dwAuthnLevel, DWORD dwImpLevel,
                                 RPC_AUTH_IDENTITY_HANDLE pAuthInfo, DWORD dwCapabilities);

}  // extern "C"

#endif
