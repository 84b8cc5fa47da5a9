// The query route of the fixes: one WMI query over Win32_QuickFixEngineering
// on a COM connection that lives only inside the call.
#include <cstdio>
#include <cstring>
#include <sstream>

#include "frame/schema_names.h"
#include "host/root_object.h"
#include "software/software_names.h"
#include "software/windows_fix_info.h"

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <wbemidl.h>
#include <comdef.h>
// clang-format on

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr int kTraceLevel = 3;
// The longest text the route carries is one less, for the end mark.
constexpr int kTextBuffer = 1024;
constexpr LONG kForwardOnlySemiSynchronous = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY;

// Narrows texts through two buffers of fixed size; a longer text is cut at
// the end of the wide buffer.
class TextNarrower {
 public:
  std::string operator()(BSTR text) {
    std::memset(narrow, 0, sizeof narrow);
    size_t length = 0;
    for (; text && text[length] && length + 1 < kTextBuffer; ++length) wide[length] = text[length];
    wide[length] = 0;
    WideCharToMultiByte(CP_ACP, 0, wide, -1, narrow, kTextBuffer, nullptr, nullptr);
    return std::string(narrow, strnlen(narrow, kTextBuffer));
  }

 private:
  WCHAR wide[kTextBuffer];
  char narrow[kTextBuffer];
};

// The properties of a fix object, in the order they are read.
enum Property { kDescription, kHotFixId, kInstallDate, kInstalledOn, kInstalledBy, kPropertyCount };
const wchar_t* const kPropertyNames[kPropertyCount] = {L"Description", L"HotFixID", L"InstallDate",
                                                       L"InstalledOn", L"InstalledBy"};

// A property taken as it is when it is text.
struct TextRule {
  Property property;
  const char* fact;
  const char* found;
  const char* notText;
};
const TextRule kTextRules[] = {
    {kDescription, constants::kProductName, constants::kWmiDescriptionFound,
     constants::kWmiDescriptionNotString},
    {kHotFixId, constants::kProductVersion, constants::kWmiHotFixIdFound,
     constants::kWmiHotFixIdNotString},
    {kInstalledBy, constants::kInstalledBy, constants::kWmiInstalledByFound,
     constants::kWmiInstalledByNotString},
};

// One delivered object with its properties; both are freed together.
class FixObject {
 public:
  explicit FixObject(IWbemClassObject* object) : object(object) {
    for (VARIANT& value : values) VariantInit(&value);
    for (int index = 0; index < kPropertyCount; ++index)
      object->Get(kPropertyNames[index], 0, &values[index], nullptr, nullptr);
  }
  ~FixObject() {
    for (VARIANT& value : values) VariantClear(&value);
    object->Release();
  }
  FixObject(const FixObject&) = delete;
  FixObject& operator=(const FixObject&) = delete;

  const VARIANT& operator[](Property property) const { return values[property]; }

 private:
  IWbemClassObject* object;
  VARIANT values[kPropertyCount];
};

// A VT_DATE as month/day/year, blank-filled.
std::string dateText(DATE date) {
  SYSTEMTIME parts = {};
  VariantTimeToSystemTime(date, &parts);
  char text[32];
  std::snprintf(text, sizeof text, "%2d/%2d/%4d", parts.wMonth, parts.wDay, parts.wYear);
  return text;
}

// Updates `record` with what `fix` delivers; a fact the object lacks keeps
// the text of an object before it.
void readFix(const FixObject& fix, FactMap& record, TextNarrower& narrow, ILogger& log) {
  for (const TextRule& rule : kTextRules) {
    const VARIANT& value = fix[rule.property];
    if (value.vt == VT_BSTR) {
      log.Log(kTraceLevel, rule.found);
      record[rule.fact] = narrow(value.bstrVal);
    } else {
      log.Log(kTraceLevel, rule.notText);
    }
  }
  if (fix[kInstallDate].vt == VT_DATE) {
    record[constants::kProductInstallDate] = dateText(fix[kInstallDate].date);
    log.Log(kTraceLevel, constants::kWmiInstallDateFound);
  } else {
    if (fix[kInstalledOn].vt == VT_BSTR)
      record[constants::kProductInstallDate] = narrow(fix[kInstalledOn].bstrVal);
    log.Log(kTraceLevel, constants::kWmiInstallDateNotString);
  }
  record[constants::kProductVendor] = constants::kFixVendor;
}

// What the route holds open on a thread that joined COM. The interfaces go
// back in this order, then the thread leaves COM, on every way out.
struct WmiSession {
  IWbemLocator* locator = nullptr;
  IWbemServices* services = nullptr;
  IEnumWbemClassObject* objects = nullptr;

  WmiSession() = default;
  WmiSession(const WmiSession&) = delete;
  WmiSession& operator=(const WmiSession&) = delete;
  ~WmiSession() {
    if (services) services->Release();
    if (locator) locator->Release();
    if (objects) objects->Release();
    CoUninitialize();
  }
};

// Steps 2 to 6 of the connection; false after logging the step that failed.
bool openQuery(WmiSession& session, ILogger& log) {
  HRESULT result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                        RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
  // Security is set once per process; a second run finds it set.
  if (FAILED(result) && result != RPC_E_TOO_LATE) {
    std::ostringstream code;
    code << std::hex << static_cast<unsigned long>(static_cast<ULONG>(result));
    log.Log(kTraceLevel, constants::kWmiSecurityFailed + code.str());
    return false;
  }
  if (FAILED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                              reinterpret_cast<LPVOID*>(&session.locator)))) {
    session.locator = nullptr;
    log.Log(kTraceLevel, constants::kWmiLocatorFailed);
    return false;
  }
  {
    // A text that cannot be allocated throws _com_error, which ends the
    // collection of the class.
    const _bstr_t wmiNamespace(constants::kWmiNamespace);
    result = session.locator->ConnectServer(wmiNamespace, nullptr, nullptr, nullptr, 0, nullptr,
                                            nullptr, &session.services);
  }
  if (FAILED(result)) {
    session.services = nullptr;
    log.Log(kTraceLevel, constants::kWmiConnectFailed);
    return false;
  }
  if (FAILED(CoSetProxyBlanket(session.services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                               RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                               EOAC_NONE))) {
    log.Log(kTraceLevel, constants::kWmiProxyBlanketFailed);
    return false;
  }
  const _bstr_t language(constants::kWmiQueryLanguage);
  const _bstr_t query(constants::kFixQuery);
  if (FAILED(session.services->ExecQuery(language, query, kForwardOnlySemiSynchronous, nullptr,
                                         &session.objects))) {
    session.objects = nullptr;
    log.Log(kTraceLevel, constants::kWmiQueryFailed);
    return false;
  }
  return true;
}

}  // namespace

FactList WindowsFixInfo::getPropertiesFromWMI() {
  ILogger& log = *TRootObject::GetCoreLogger();
  if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
    log.Log(kTraceLevel, constants::kWmiComFailed);
    return FactList();
  }
  WmiSession session;
  FactList result;
  if (!openQuery(session, log)) return result;
  TextNarrower narrow;
  FactMap record;
  for (;;) {
    IWbemClassObject* object = nullptr;
    ULONG delivered = 0;
    session.objects->Next(WBEM_INFINITE, 1, &object, &delivered);
    if (delivered == 0) break;
    const FixObject fix(object);
    readFix(fix, record, narrow, log);
    result.push_back(record);
  }
  return result;
}

}  // namespace installedapps_col
