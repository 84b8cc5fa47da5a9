// COM: a thread joins with CoInitializeEx and leaves with as many CoUninitialize calls; the
// process's security is set once; the one class there is to make is the WMI locator, an
// in-process server.
#include <atomic>

#include "winapi/com/com_object.h"
#include "winapi/com/wmi.h"
#include "winapi/include/objbase.h"
#include "winapi/include/wbemidl.h"
#include "winapi/machine/faults.h"

extern "C" const IID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

namespace {

// COINIT_APARTMENTTHREADED, COINIT_DISABLE_OLE1DDE, COINIT_SPEED_OVER_MEMORY.
constexpr DWORD kCoInitFlags = 0x0000000E;

// This thread's part in COM: how often it joined, not yet matched by CoUninitialize, and the
// threading model it joined with.
struct Apartment {
  unsigned joins = 0;
  DWORD model = COINIT_MULTITHREADED;
};
thread_local Apartment apartment;

std::atomic<bool> securitySet{false};

bool validLevels(DWORD authnLevel, DWORD impLevel) {
  return authnLevel <= RPC_C_AUTHN_LEVEL_PKT_PRIVACY && impLevel <= RPC_C_IMP_LEVEL_DELEGATE;
}

}  // namespace

extern "C" HRESULT WINAPI CoInitializeEx(LPVOID pvReserved, DWORD dwCoInit) {
  using namespace winapi;
  if (auto failed = injected<HRESULT>("CoInitializeEx", Reports::ByReturnValue)) return *failed;
  if (pvReserved || (dwCoInit & ~kCoInitFlags)) return E_INVALIDARG;
  DWORD model = dwCoInit & COINIT_APARTMENTTHREADED;
  if (apartment.joins > 0 && apartment.model != model) return RPC_E_CHANGED_MODE;
  apartment.model = model;
  return apartment.joins++ == 0 ? S_OK : S_FALSE;
}

extern "C" void WINAPI CoUninitialize() {
  if (apartment.joins > 0) --apartment.joins;
}

extern "C" HRESULT WINAPI CoInitializeSecurity(PSECURITY_DESCRIPTOR, LONG cAuthSvc,
                                               SOLE_AUTHENTICATION_SERVICE* asAuthSvc,
                                               void* pReserved1, DWORD dwAuthnLevel,
                                               DWORD dwImpLevel, void*, DWORD, void* pReserved3) {
  using namespace winapi;
  if (auto failed = injected<HRESULT>("CoInitializeSecurity", Reports::ByReturnValue))
    return *failed;
  bool validServices = cAuthSvc == -1 ? !asAuthSvc : cAuthSvc >= 0 && (cAuthSvc == 0 || asAuthSvc);
  if (!validServices || pReserved1 || pReserved3 || !validLevels(dwAuthnLevel, dwImpLevel))
    return E_INVALIDARG;
  bool wasSet = securitySet.exchange(true);
  return wasSet ? RPC_E_TOO_LATE : S_OK;
}

extern "C" HRESULT WINAPI CoCreateInstance(REFCLSID rclsid, LPUNKNOWN pUnkOuter, DWORD dwClsContext,
                                           REFIID riid, LPVOID* ppv) {
  using namespace winapi;
  if (auto failed = injected<HRESULT>("CoCreateInstance", Reports::ByReturnValue)) return *failed;
  if (!ppv) return E_POINTER;
  *ppv = nullptr;
  if (apartment.joins == 0) return CO_E_NOTINITIALIZED;
  if (rclsid != CLSID_WbemLocator || !(dwClsContext & CLSCTX_INPROC_SERVER))
    return REGDB_E_CLASSNOTREG;
  if (pUnkOuter) return CLASS_E_NOAGGREGATION;
  IWbemLocator* locator = newWbemLocator();
  HRESULT result = locator->QueryInterface(riid, ppv);
  locator->Release();
  return result;
}

extern "C" HRESULT WINAPI CoSetProxyBlanket(IUnknown* pProxy, DWORD, DWORD, OLECHAR*,
                                            DWORD dwAuthnLevel, DWORD dwImpLevel,
                                            RPC_AUTH_IDENTITY_HANDLE, DWORD) {
  using namespace winapi;
  if (auto failed = injected<HRESULT>("CoSetProxyBlanket", Reports::ByReturnValue)) return *failed;
  if (!pProxy || !validLevels(dwAuthnLevel, dwImpLevel)) return E_INVALIDARG;
  // An in-process object has no proxy to set the security of.
  return dynamic_cast<ServiceProxy*>(pProxy) ? S_OK : E_NOINTERFACE;
}
