#include "os/os_product_info.h"

#include <cstring>
#include <map>
#include <vector>

#include "frame/cim_value_builder.h"
#include "frame/procedure.h"
#include "frame/registry_reader.h"
#include "frame/schema_names.h"
#include "frame/wow64.h"
#include "os/os_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr unsigned short kSmallBusinessSubType = 13;
constexpr DWORD kMarkerBuffer = 1024;
constexpr DWORD kTextBufferStep = 1024;

// The generation a reported major.minor version starts from; versions
// without a row start from 0.
const std::map<std::string, unsigned short> kOSVersionTable = {
    {"4.0", 18}, {"5.0", 58}, {"5.1", 67}, {"5.2", 69}, {"6.1", 82}};

const std::map<std::string, unsigned short> kOSEditionTable = {
    {"unknown", 0},
    {"other", 1},
    {"Workstation 4.0", 2},
    {"Home Edition", 3},
    {"Professional", 4},
    {"Datacenter Edition", 5},
    {"Enterprise Edition", 6},
    {"Web Edition", 7},
    {"Standard Edition", 8},
    {"Datacenter Server", 9},
    {"Advanced Server", 10},
    {"Server", 11},
    {"Business Edition", 12},
    {"Small Business Edition", 13},
    {"Home Premium Edition", 15},
    {"Ultimate Edition", 16},
    {"Professional Edition", 17},
    {"Home Basic Edition", 18},
    {"HPC Edition", 19},
};

// GetProductInfo's answer on a 6.1 workstation to its edition.
const std::map<DWORD, const char*> kWorkstationProducts = {
    {1, "Ultimate Edition"},   {2, "Home Basic Edition"},    {3, "Home Premium Edition"},
    {4, "Enterprise Edition"}, {48, "Professional Edition"},
};

// Suite bits of a server to its edition; the first bit that is set decides.
struct SuiteEdition {
  WORD suite;
  const char* edition;
};
const std::vector<SuiteEdition> k52Suites = {{VER_SUITE_DATACENTER, "Datacenter Edition"},
                                             {VER_SUITE_ENTERPRISE, "Enterprise Edition"},
                                             {VER_SUITE_BLADE, "Web Edition"},
                                             {VER_SUITE_SMALLBUSINESS, "Small Business Edition"}};
const std::vector<SuiteEdition> k50Suites = {{VER_SUITE_DATACENTER, "Datacenter Server"},
                                             {VER_SUITE_ENTERPRISE, "Advanced Server"}};
const std::vector<SuiteEdition> k6Suites = {{VER_SUITE_DATACENTER, "Datacenter Edition"},
                                            {VER_SUITE_ENTERPRISE, "Enterprise Edition"},
                                            {VER_SUITE_BLADE, "Web Edition"},
                                            {VER_SUITE_SMALLBUSINESS, "Small Business Edition"},
                                            {0x20, "Small Business Edition Restricted"}};

const char* suiteEdition(WORD mask, const std::vector<SuiteEdition>& rows) {
  for (const SuiteEdition& row : rows)
    if (mask & row.suite) return row.edition;
  return nullptr;
}

bool isVersion(const OSVERSIONINFOEXA& info, DWORD major, DWORD minor) {
  return info.dwMajorVersion == major && info.dwMinorVersion == minor;
}

typedef BOOL(WINAPI* GetProductInfoFunction)(DWORD, DWORD, DWORD, DWORD, DWORD*);

bool has64BitProcessor() {
  SYSTEM_INFO info = {};
  GetSystemInfo(&info);
  return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_IA64 ||
         info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64;
}

bool is64BitSystem() { return runsUnderWow64() || has64BitProcessor(); }

// The product type the system reports for its version; 0 (undefined) when
// it can't say.
DWORD productType(const OSVERSIONINFOEXA& info) {
  auto getProductInfo =
      procedure<GetProductInfoFunction>(GetModuleHandleA("kernel32.dll"), "GetProductInfo");
  DWORD type = 0;
  if (!getProductInfo || !getProductInfo(info.dwMajorVersion, info.dwMinorVersion, 0, 0, &type))
    return 0;
  return type;
}

std::string workstationEdition(const OSVERSIONINFOEXA& info) {
  std::string edition = info.dwMajorVersion == 4                      ? "Workstation 4.0"
                        : (info.wSuiteMask & VER_SUITE_PERSONAL) != 0 ? "Home Edition"
                                                                      : "Professional";
  if (isVersion(info, 6, 1)) {
    auto product = kWorkstationProducts.find(productType(info));
    if (product != kWorkstationProducts.end()) edition = product->second;
  }
  return edition;
}

std::string serverEdition(const OSVERSIONINFOEXA& info) {
  const char* edition = nullptr;
  if (isVersion(info, 5, 2)) {
    edition = suiteEdition(info.wSuiteMask, k52Suites);
  } else if (isVersion(info, 5, 0)) {
    edition = suiteEdition(info.wSuiteMask, k50Suites);
    if (!edition) edition = "Server";
  } else if (info.dwMajorVersion == 6 && info.dwMinorVersion <= 2) {
    edition = suiteEdition(info.wSuiteMask, k6Suites);
    if (!edition && productType(info) == PRODUCT_CLUSTER_SERVER) edition = "HPC Edition";
  }
  return edition ? edition : "Standard Edition";
}

// A value of the CurrentVersion key as text, the buffer grown while the
// value doesn't fit; empty when the key or the value can't be read.
std::string readCurrentVersionText(const char* name) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, constants::kCurrentVersionKey, 0, KEY_READ, &key) !=
      ERROR_SUCCESS)
    return std::string();
  std::string text;
  try {
    std::vector<char> buffer(1, '\0');
    DWORD size = 0;
    LONG status = RegQueryValueExA(key, name, nullptr, nullptr,
                                   reinterpret_cast<LPBYTE>(buffer.data()), &size);
    while (status == ERROR_MORE_DATA) {
      size += kTextBufferStep;
      // One byte more than announced, so that the text always ends.
      buffer.assign(size + 1, '\0');
      status = RegQueryValueExA(key, name, nullptr, nullptr,
                                reinterpret_cast<LPBYTE>(buffer.data()), &size);
    }
    if (status == ERROR_SUCCESS) text.assign(buffer.data(), strnlen(buffer.data(), buffer.size()));
  } catch (const std::exception&) {
    text.clear();
  }
  RegCloseKey(key);
  return text;
}

}  // namespace

OSProductInfo::OSProductInfo(boost::shared_ptr<ICIMClass> cimClass)
    : cimClass(std::move(cimClass)), logger(LogMessage::getInstance()) {}

PropertyMap OSProductInfo::getProductProperties() {
  FactMap facts = getRegistryFacts();
  const FactMap more = getVersionFacts();
  facts.insert({constants::kProductVendor, constants::kMicrosoftCorporation});
  facts.insert(more.begin(), more.end());
  return CIMValueBuilder(cimClass).buildProperties(facts);
}

FactMap OSProductInfo::getRegistryFacts() {
  return RegistryReader().readValues(constants::kCurrentVersionKey,
                                     {{constants::kProductID, "ProductId"},
                                      {constants::kVersion, "CurrentVersion"},
                                      {constants::kInstallDate, "InstallDate"},
                                      {constants::kRegisteredOwner, "RegisteredOwner"},
                                      {constants::kBuildID, "CurrentBuildNumber"},
                                      {constants::kProductName, "ProductName"}});
}

FactMap OSProductInfo::getVersionFacts() {
  OSVERSIONINFOEXA info = {};
  info.dwOSVersionInfoSize = sizeof info;
  if (!GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info))) return FactMap();
  const unsigned short type = getOSType(info);
  unsigned short subType = getOSSubType(info);
  // 6.0 workstations call their business edition "Professional".
  if ((type == 74 || type == 75) && subType == 4) subType = 12;
  const std::string servicePack(info.szCSDVersion,
                                strnlen(info.szCSDVersion, sizeof info.szCSDVersion));
  const std::string fixLevel = servicePack.empty() ? constants::kNoServicePacks : servicePack;
  logger->logTrace(constants::kServicePack + servicePack);
  logger->logTrace(constants::kFixLevelSize + std::to_string(fixLevel.size()));
  logger->logTrace(constants::kAddingFixLevel);
  return {{constants::kOSType, std::to_string(type)},
          {constants::kOSSubType, std::to_string(subType)},
          {constants::kFixLevel, fixLevel}};
}

unsigned short OSProductInfo::getOSType(const OSVERSIONINFOEXA& info) {
  auto row = kOSVersionTable.find(std::to_string(info.dwMajorVersion) + "." +
                                  std::to_string(info.dwMinorVersion));
  unsigned short type = row == kOSVersionTable.end() ? 0 : row->second;
  const bool r2 = hasR2Marker();
  if (type == 69 && r2) type = 72;
  if (isVersion(info, 5, 2)) return typeOf52(info, type, r2);
  if (isVersion(info, 6, 0)) return typeOf60(info);
  if (isVersion(info, 6, 1)) return typeOf61(info);
  if (isVersion(info, 6, 2)) return typeOf62(info, type);
  return type;
}

unsigned short OSProductInfo::typeOf52(const OSVERSIONINFOEXA& info, unsigned short type, bool r2) {
  if (info.wProductType == VER_NT_WORKSTATION) return 71;
  if (!is64BitSystem()) return type;
  return r2 ? 73 : 70;
}

unsigned short OSProductInfo::typeOf60(const OSVERSIONINFOEXA& info) {
  logger->logDebug(constants::kVistaDetected);
  unsigned short type;
  if (info.wProductType == VER_NT_WORKSTATION) {
    type = is64BitSystem() ? 75 : 74;
  } else {
    logger->logTrace(constants::kLonghornDetected);
    type = is64BitSystem() ? 77 : 76;
  }
  if (hasMiniNTKey()) {
    logger->logDebug(constants::kMiniNTFound);
    type = has64BitProcessor() ? 80 : 79;
  }
  return type;
}

unsigned short OSProductInfo::typeOf61(const OSVERSIONINFOEXA& info) {
  if (info.wProductType != VER_NT_WORKSTATION)
    return getOSSubType(info) == kSmallBusinessSubType ? 84 : 82;
  if (!isPreinstallationEnvironment()) return 83;
  return has64BitProcessor() ? 80 : 79;
}

unsigned short OSProductInfo::typeOf62(const OSVERSIONINFOEXA& info, unsigned short type) {
  if (info.wProductType == VER_NT_WORKSTATION) return 85;
  if (!is64BitSystem()) return type;
  // Programs that don't declare the later systems are told 6.2 there; the
  // registry's CurrentVersion still tells them apart.
  FactMap facts = getRegistryFacts();
  if (facts[constants::kVersion] != "6.3") return 87;
  return facts[constants::kProductName].find("2016") != std::string::npos ? 88 : 86;
}

unsigned short OSProductInfo::getOSSubType(const OSVERSIONINFOEXA& info) {
  auto row = kOSEditionTable.find(getEditionName(info));
  return row == kOSEditionTable.end() ? 0 : row->second;
}

std::string OSProductInfo::getEditionName(const OSVERSIONINFOEXA& info) {
  if (info.dwPlatformId != VER_PLATFORM_WIN32_NT) return std::string();
  if (info.wProductType == VER_NT_WORKSTATION) return workstationEdition(info);
  if (info.wProductType == VER_NT_DOMAIN_CONTROLLER || info.wProductType == VER_NT_SERVER)
    return serverEdition(info);
  return std::string();
}

bool OSProductInfo::isPreinstallationEnvironment() {
  const std::string buildLabel = readCurrentVersionText("BuildLabEx");
  const std::string productName = readCurrentVersionText("ProductName");
  OSVERSIONINFOEXA info = {};
  info.dwOSVersionInfoSize = sizeof(OSVERSIONINFOA);
  GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info));
  if (productName.find("Preinstallation") == std::string::npos) return false;
  if (buildLabel.find("win7") != std::string::npos) return true;
  return info.dwMajorVersion >= 6;
}

bool OSProductInfo::hasR2Marker() {
  RegistryReader reader;
  HKEY key = nullptr;
  if (reader.openKey(&key, HKEY_LOCAL_MACHINE, constants::kR2SetupKey)) return false;
  std::vector<BYTE> buffer(kMarkerBuffer, 0);
  DWORD size = kMarkerBuffer;
  const bool found = RegQueryValueExA(key, "R2BuildNumber", nullptr, nullptr, buffer.data(),
                                      &size) == ERROR_SUCCESS;
  reader.closeKey(&key);
  return found;
}

bool OSProductInfo::hasMiniNTKey() {
  RegistryReader reader;
  HKEY key = nullptr;
  if (reader.openKey(&key, HKEY_LOCAL_MACHINE, constants::kMiniNTKey)) return false;
  reader.closeKey(&key);
  return true;
}

}  // namespace installedapps_col
