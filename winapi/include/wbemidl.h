// WMI as <wbemidl.h> declares it, as far as the collector uses it: the locator, the
// namespace's services, the enumerator of a query and the objects it delivers. The interfaces
// carry the methods the collector calls, with the signatures of the Windows headers.

#ifndef VRX_WINAPI_WBEMIDL_H
#define VRX_WINAPI_WBEMIDL_H

#include "winapi/include/objbase.h"
#include "winapi/include/oleauto.h"
#include "winapi/include/windows.h"

typedef LONG CIMTYPE;

typedef enum tag_WBEM_GENERIC_FLAG_TYPE {
  WBEM_FLAG_RETURN_IMMEDIATELY = 0x10,
  WBEM_FLAG_FORWARD_ONLY = 0x20
} WBEM_GENERIC_FLAG_TYPE;

typedef enum tag_WBEM_TIMEOUT_TYPE { WBEM_INFINITE = 0xFFFFFFFF } WBEM_TIMEOUT_TYPE;

typedef enum tag_WBEMSTATUS {
  WBEM_S_NO_ERROR = 0,
  WBEM_S_FALSE = 1,
  WBEM_E_NOT_FOUND = 0x80041002,
  WBEM_E_OUT_OF_MEMORY = 0x80041006,
  WBEM_E_INVALID_PARAMETER = 0x80041008,
  WBEM_E_INVALID_NAMESPACE = 0x8004100E,
  WBEM_E_INVALID_CLASS = 0x80041010,
  WBEM_E_INVALID_QUERY = 0x80041017,
  WBEM_E_INVALID_QUERY_TYPE = 0x80041018,
  WBEM_E_LOCAL_CREDENTIALS = 0x80041064
} WBEMSTATUS;

struct IWbemContext;  // always null here

struct IWbemClassObject : public IUnknown {
  virtual HRESULT Get(LPCWSTR wszName, LONG lFlags, VARIANT* pVal, CIMTYPE* pType,
                      LONG* plFlavor) = 0;
};

struct IEnumWbemClassObject : public IUnknown {
  virtual HRESULT Next(LONG lTimeout, ULONG uCount, IWbemClassObject** apObjects,
                       ULONG* puReturned) = 0;
};

struct IWbemServices : public IUnknown {
  virtual HRESULT ExecQuery(const BSTR strQueryLanguage, const BSTR strQuery, LONG lFlags,
                            IWbemContext* pCtx, IEnumWbemClassObject** ppEnum) = 0;
};

struct IWbemLocator : public IUnknown {
  virtual HRESULT ConnectServer(const BSTR strNetworkResource, const BSTR strUser,
                                const BSTR strPassword, const BSTR strLocale, LONG lSecurityFlags,
                                const BSTR strAuthority, IWbemContext* pCtx,
                                IWbemServices** ppNamespace) = 0;
};

extern "C" {

extern const CLSID CLSID_WbemLocator;
extern const IID IID_IWbemLocator;
extern const IID IID_IWbemServices;
extern const IID IID_IEnumWbemClassObject;
extern const IID IID_IWbemClassObject;

}  // extern "C"

#endif
