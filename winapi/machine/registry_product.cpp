// Since Windows 8.1 the version calls stop at 6.2 for a program that does not declare the later
// systems in a manifest, while the registry's CurrentVersion says "6.3" and the newer systems
// add CurrentMajorVersionNumber. The suite and product type are what the kernel derives at boot
// from ProductOptions; the product number is the edition's.
#include "winapi/machine/registry_product.h"

#include <cstdio>
#include <cstdlib>

#include "winapi/include/windows.h"
#include "winapi/machine/registry_values.h"
#include "winapi/support/text.h"

namespace winapi {

namespace {

const RegistryPath kCurrentVersion{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion"};
const RegistryPath kProductOptions{L"SYSTEM", L"CurrentControlSet", L"Control", L"ProductOptions"};
const RegistryPath kControlWindows{L"SYSTEM", L"CurrentControlSet", L"Control", L"Windows"};
constexpr unsigned kFirstVersionWithEditions = 6;

struct Named {
  const char* name;
  std::uint32_t number;
};

const Named kProductTypes[] = {{"WinNT", VER_NT_WORKSTATION},
                               {"LanmanNT", VER_NT_DOMAIN_CONTROLLER},
                               {"ServerNT", VER_NT_SERVER}};

const Named kSuites[] = {{"Small Business", VER_SUITE_SMALLBUSINESS},
                         {"Enterprise", VER_SUITE_ENTERPRISE},
                         {"BackOffice", VER_SUITE_BACKOFFICE},
                         {"CommunicationServer", VER_SUITE_COMMUNICATIONS},
                         {"Terminal Server", VER_SUITE_TERMINAL},
                         {"Small Business(Restricted)", VER_SUITE_SMALLBUSINESS_RESTRICTED},
                         {"EmbeddedNT", VER_SUITE_EMBEDDEDNT},
                         {"DataCenter", VER_SUITE_DATACENTER},
                         {"Personal", VER_SUITE_PERSONAL},
                         {"Blade", VER_SUITE_BLADE},
                         {"Embedded(Restricted)", VER_SUITE_EMBEDDED_RESTRICTED},
                         {"Security Appliance", VER_SUITE_SECURITY_APPLIANCE},
                         {"Storage Server", VER_SUITE_STORAGE_SERVER},
                         {"Compute Server", VER_SUITE_COMPUTE_SERVER},
                         {"WH Server", VER_SUITE_WH_SERVER}};

// EditionID to PRODUCT_*, as Windows 6.0 to 10.0 define them.
const Named kEditions[] = {
    {"Ultimate", 0x01},
    {"HomeBasic", 0x02},
    {"HomePremium", 0x03},
    {"Enterprise", 0x04},
    {"HomeBasicN", 0x05},
    {"Business", 0x06},
    {"ServerStandard", 0x07},
    {"ServerDatacenter", 0x08},
    {"ServerSBSStandard", 0x09},
    {"ServerEnterprise", 0x0A},
    {"Starter", 0x0B},
    {"ServerDatacenterCore", 0x0C},
    {"ServerStandardCore", 0x0D},
    {"ServerEnterpriseCore", 0x0E},
    {"ServerEnterpriseIA64", 0x0F},
    {"BusinessN", 0x10},
    {"ServerWeb", 0x11},
    {"ServerHPC", 0x12},
    {"ServerStorageExpress", 0x14},
    {"ServerStorageStandard", 0x15},
    {"ServerStorageWorkgroup", 0x16},
    {"ServerStorageEnterprise", 0x17},
    {"ServerSBSPremium", 0x19},
    {"HomePremiumN", 0x1A},
    {"EnterpriseN", 0x1B},
    {"UltimateN", 0x1C},
    {"ServerWebCore", 0x1D},
    {"ServerMediumBusinessManagement", 0x1E},
    {"ServerMediumBusinessSecurity", 0x1F},
    {"ServerMediumBusinessMessaging", 0x20},
    {"ServerWinFoundation", 0x21},
    {"ServerStandardV", 0x24},
    {"ServerDatacenterV", 0x25},
    {"ServerEnterpriseV", 0x26},
    {"ServerDatacenterVCore", 0x27},
    {"ServerStandardVCore", 0x28},
    {"ServerEnterpriseVCore", 0x29},
    {"ServerHyperCore", 0x2A},
    {"ServerStorageExpressCore", 0x2B},
    {"ServerStorageStandardCore", 0x2C},
    {"ServerStorageWorkgroupCore", 0x2D},
    {"ServerStorageEnterpriseCore", 0x2E},
    {"StarterN", 0x2F},
    {"Professional", 0x30},
    {"ProfessionalN", 0x31},
    {"ServerSolution", 0x32},
    {"ServerForSBSolutions", 0x33},
    {"ServerSolutionsPremium", 0x34},
    {"ServerSolutionsPremiumCore", 0x35},
    {"ServerSolutionEM", 0x36},
    {"ServerForSBSolutionsEM", 0x37},
    {"ServerEmbeddedSolution", 0x38},
    {"ServerEmbeddedSolutionCore", 0x39},
    {"ProfessionalEmbedded", 0x3A},
    {"ServerSBSPremiumCore", 0x3F},
    {"Embedded", 0x41},
    {"StarterE", 0x42},
    {"HomeBasicE", 0x43},
    {"HomePremiumE", 0x44},
    {"ProfessionalE", 0x45},
    {"EnterpriseE", 0x46},
    {"UltimateE", 0x47},
    {"EnterpriseEval", 0x48},
    {"ServerMultiPointStandard", 0x4C},
    {"ServerMultiPointPremium", 0x4D},
    {"ServerStandardEval", 0x4F},
    {"ServerDatacenterEval", 0x50},
    {"EnterpriseNEval", 0x54},
    {"EmbeddedAutomotive", 0x55},
    {"EmbeddedIndustryA", 0x56},
    {"ThinPC", 0x57},
    {"EmbeddedA", 0x58},
    {"EmbeddedIndustry", 0x59},
    {"EmbeddedE", 0x5A},
    {"EmbeddedIndustryE", 0x5B},
    {"EmbeddedIndustryAE", 0x5C},
    {"ServerStorageWorkgroupEval", 0x5F},
    {"ServerStorageStandardEval", 0x60},
    {"CoreARM", 0x61},
    {"CoreN", 0x62},
    {"CoreCountrySpecific", 0x63},
    {"CoreSingleLanguage", 0x64},
    {"Core", 0x65},
    {"ProfessionalWMC", 0x67},
    {"MobileCore", 0x68},
    {"EmbeddedIndustryEval", 0x69},
    {"EmbeddedIndustryEEval", 0x6A},
    {"EmbeddedEval", 0x6B},
    {"EmbeddedEEval", 0x6C},
    {"ServerNano", 0x6D},
    {"ServerCloudStorage", 0x6E},
    {"CoreConnected", 0x6F},
    {"ProfessionalStudent", 0x70},
    {"CoreConnectedN", 0x71},
    {"ProfessionalStudentN", 0x72},
    {"CoreConnectedSingleLanguage", 0x73},
    {"CoreConnectedCountrySpecific", 0x74},
    {"ConnectedCar", 0x75},
    {"IndustryHandheld", 0x76},
    {"PPIPro", 0x77},
    {"ServerARM64", 0x78},
    {"Education", 0x79},
    {"EducationN", 0x7A},
    {"IoTUAP", 0x7B},
    {"EnterpriseS", 0x7D},
    {"EnterpriseSN", 0x7E},
    {"ProfessionalS", 0x7F},
    {"ProfessionalSN", 0x80},
    {"EnterpriseSEval", 0x81},
    {"EnterpriseSNEval", 0x82},
    {"IoTUAPCommercial", 0x83},
    {"MobileEnterprise", 0x85},
    {"Holographic", 0x87},
    {"ProfessionalSingleLanguage", 0x8A},
    {"ProfessionalCountrySpecific", 0x8B},
    {"EnterpriseSubscription", 0x8C},
    {"EnterpriseSubscriptionN", 0x8D},
    {"ServerDatacenterNano", 0x8F},
    {"ServerStandardNano", 0x90},
    {"ServerDatacenterACor", 0x91},
    {"ServerStandardACor", 0x92},
    {"ServerDatacenterWSCor", 0x93},
    {"ServerStandardWSCor", 0x94},
    {"UtilityVM", 0x95},
    {"ServerDatacenterEvalCor", 0x9F},
    {"ServerStandardEvalCor", 0xA0},
    {"ProfessionalWorkstation", 0xA1},
    {"ProfessionalWorkstationN", 0xA2},
    {"ProfessionalEducation", 0xA4},
    {"ProfessionalEducationN", 0xA5},
    {"ServerAzureCor", 0xA8},
    {"ServerAzureNano", 0xA9},
    {"EnterpriseG", 0xAB},
    {"EnterpriseGN", 0xAC},
    {"ServerRdsh", 0xAF},
    {"Cloud", 0xB2},
    {"CloudN", 0xB3},
    {"CloudE", 0xB7},
    {"IoTEnterprise", 0xBC},
    {"Lite", 0xBD},
    {"IoTEnterpriseS", 0xBF},
};

std::optional<std::uint32_t> numberOf(const Named* table, std::size_t size, const std::string& name,
                                      bool anyCase) {
  for (std::size_t i = 0; i < size; ++i)
    if (anyCase ? equalsIgnoringCase(name, table[i].name) : name == table[i].name)
      return table[i].number;
  return std::nullopt;
}

template <std::size_t N>
std::optional<std::uint32_t> numberOf(const Named (&table)[N], const std::string& name,
                                      bool anyCase) {
  return numberOf(table, N, name, anyCase);
}

struct VersionNumber {
  unsigned major = 0, minor = 0;
};

// The numbers Windows 10 and later keep as DWORDs (Wine keeps them for every version it
// plays), else CurrentVersion's text; every system past 6.2 is told 6.2.
std::optional<VersionNumber> reportedVersion(const RegistryKey& machine) {
  auto major = dwordAt(machine, kCurrentVersion, L"CurrentMajorVersionNumber");
  auto minor = dwordAt(machine, kCurrentVersion, L"CurrentMinorVersionNumber");
  auto number = textAt(machine, kCurrentVersion, L"CurrentVersion");
  VersionNumber version;
  if (major) {
    version = {*major, minor.value_or(0)};
  } else if (!number ||
             std::sscanf(number->c_str(), "%u.%u", &version.major, &version.minor) != 2) {
    return std::nullopt;
  }
  if (version.major > 6 || (version.major == 6 && version.minor > 2)) version = {6, 2};
  return version;
}

}  // namespace

std::uint16_t suiteMask(const std::vector<std::string>& productSuite, unsigned major,
                        unsigned minor, unsigned productType) {
  std::uint16_t mask = 0;
  for (const std::string& word : productSuite)
    mask |= static_cast<std::uint16_t>(numberOf(kSuites, word, false).value_or(0));
  bool remoteDesktop = major > 5 || (major == 5 && minor >= 1);
  if (productType == VER_NT_WORKSTATION && remoteDesktop) mask |= VER_SUITE_SINGLEUSERTS;
  return mask;
}

std::uint32_t productOfEdition(const std::string& editionId) {
  return numberOf(kEditions, editionId, true).value_or(PRODUCT_UNDEFINED);
}

nlohmann::json registryVersion(const RegistryKey& machine) {
  auto version = reportedVersion(machine);
  if (!version) return nullptr;
  auto build = textAt(machine, kCurrentVersion, L"CurrentBuildNumber");
  nlohmann::json record{
      {"major", version->major},
      {"minor", version->minor},
      {"build", build ? std::strtoul(build->c_str(), nullptr, 10) : 0},
      {"platformId", VER_PLATFORM_WIN32_NT},
      {"csdVersion", textAt(machine, kCurrentVersion, L"CSDVersion").value_or("")}};
  // The service pack as the kernel keeps it: major in the high byte, minor in the low one.
  if (auto pack = dwordAt(machine, kControlWindows, L"CSDVersion")) {
    record["servicePackMajor"] = *pack >> 8 & 0xFF;
    record["servicePackMinor"] = *pack & 0xFF;
  }
  auto typeName = textAt(machine, kProductOptions, L"ProductType");
  auto type = typeName ? numberOf(kProductTypes, *typeName, true) : std::nullopt;
  if (type) record["productType"] = *type;
  auto suite = wordsAt(machine, kProductOptions, L"ProductSuite");
  record["suiteMask"] = suiteMask(suite.value_or(std::vector<std::string>{}), version->major,
                                  version->minor, type.value_or(VER_NT_WORKSTATION));
  auto edition = textAt(machine, kCurrentVersion, L"EditionID");
  if (edition && version->major >= kFirstVersionWithEditions)
    record["productInfo"] = productOfEdition(*edition);
  return record;
}

}  // namespace winapi
