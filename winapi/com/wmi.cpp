// WMI: the locator connects to the namespace ROOT\CIMV2, whose classes and objects are the
// machine's `wmi` member; a machine without one has no WMI service to connect to. The services
// answer the one query form "SELECT * FROM Class".
#include "winapi/com/wmi.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>
#include <vector>

#include "winapi/com/com_object.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/text.h"
#include "winapi/support/unicode_text.h"

extern "C" {
const CLSID CLSID_WbemLocator = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
const IID IID_IWbemLocator = {
    0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
const IID IID_IWbemServices = {
    0x9556DC99, 0x828C, 0x11CF, {0xA3, 0x7E, 0x00, 0xAA, 0x00, 0x32, 0x40, 0xC7}};
}

namespace winapi {

namespace {

constexpr const char* kNamespace = "ROOT\\CIMV2";
constexpr LONG kConnectFlags = 0x80;  // WBEM_FLAG_CONNECT_USE_MAX_WAIT
// WBEM_FLAG_RETURN_IMMEDIATELY, WBEM_FLAG_FORWARD_ONLY, WBEM_FLAG_PROTOTYPE,
// WBEM_FLAG_ENSURE_LOCATABLE, WBEM_FLAG_DIRECT_READ, WBEM_FLAG_USE_AMENDED_QUALIFIERS.
constexpr LONG kQueryFlags = 0x20332;
// HRESULT_FROM_WIN32(ERROR_SERVICE_DISABLED): the WMI service cannot be started.
constexpr HRESULT kServiceDisabled = static_cast<HRESULT>(0x80070422);

bool hasText(const wchar_t* text) { return text && *text; }

bool isIdentifier(const std::string& name) {
  auto isWordChar = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
  return !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0])) &&
         std::all_of(name.begin(), name.end(), isWordChar);
}

// Blank-separated words; '*' is a word of its own, as "SELECT*FROM X" is a query too.
std::vector<std::string> words(const std::string& text) {
  std::vector<std::string> result(1);
  for (char c : text) {
    bool blank = std::isspace(static_cast<unsigned char>(c));
    if ((blank || c == '*') && !result.back().empty()) result.emplace_back();
    if (!blank) result.back() += c;
    if (c == '*') result.emplace_back();
  }
  if (result.back().empty()) result.pop_back();
  return result;
}

// The class of "SELECT * FROM Class", keywords in any case; nullopt for any other query.
std::optional<std::string> selectAllFrom(const std::string& query) {
  std::vector<std::string> parts = words(query);
  if (parts.size() != 4 || !equalsIgnoringCase(parts[0], "SELECT") || parts[1] != "*" ||
      !equalsIgnoringCase(parts[2], "FROM") || !isIdentifier(parts[3]))
    return std::nullopt;
  return parts[3];
}

// The objects of the machine's class `name`, whose name WMI compares without regard to case.
const nlohmann::json* findClass(const std::string& name) {
  const nlohmann::json& description = currentMachine().description();
  auto wmi = description.find("wmi");
  if (wmi == description.end()) return nullptr;
  for (auto entry = wmi->begin(); entry != wmi->end(); ++entry)
    if (equalsIgnoringCase(entry.key(), name)) return &entry.value();
  return nullptr;
}

class Services final : public ComObject<IWbemServices>, public ServiceProxy {
 public:
  Services() : ComObject(IID_IWbemServices) {}

  HRESULT ExecQuery(const BSTR strQueryLanguage, const BSTR strQuery, LONG lFlags, IWbemContext*,
                    IEnumWbemClassObject** ppEnum) override {
    if (auto failed = injected<HRESULT>("IWbemServices::ExecQuery", Reports::ByReturnValue))
      return *failed;
    if (!strQueryLanguage || !strQuery || !ppEnum || (lFlags & ~kQueryFlags))
      return WBEM_E_INVALID_PARAMETER;
    *ppEnum = nullptr;
    if (!equalsIgnoringCase(wideToUtf8(strQueryLanguage), "WQL")) return WBEM_E_INVALID_QUERY_TYPE;
    std::optional<std::string> name = selectAllFrom(wideToUtf8(strQuery));
    if (!name) return WBEM_E_INVALID_QUERY;
    const nlohmann::json* objects = findClass(*name);
    if (!objects) return WBEM_E_INVALID_CLASS;
    *ppEnum = newWbemEnumerator(std::make_shared<const nlohmann::json>(*objects));
    return WBEM_S_NO_ERROR;
  }
};

class Locator final : public ComObject<IWbemLocator> {
 public:
  Locator() : ComObject(IID_IWbemLocator) {}

  HRESULT ConnectServer(const BSTR strNetworkResource, const BSTR strUser, const BSTR strPassword,
                        const BSTR, LONG lSecurityFlags, const BSTR, IWbemContext*,
                        IWbemServices** ppNamespace) override {
    if (auto failed = injected<HRESULT>("IWbemLocator::ConnectServer", Reports::ByReturnValue))
      return *failed;
    if (!strNetworkResource || !ppNamespace || (lSecurityFlags & ~kConnectFlags))
      return WBEM_E_INVALID_PARAMETER;
    *ppNamespace = nullptr;
    if (!equalsIgnoringCase(wideToUtf8(strNetworkResource), kNamespace))
      return WBEM_E_INVALID_NAMESPACE;
    if (hasText(strUser) || hasText(strPassword)) return WBEM_E_LOCAL_CREDENTIALS;
    if (!currentMachine().description().contains("wmi")) return kServiceDisabled;
    *ppNamespace = new Services;
    return WBEM_S_NO_ERROR;
  }
};

}  // namespace

IWbemLocator* newWbemLocator() { return new Locator; }

}  // namespace winapi
