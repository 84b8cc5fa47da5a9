#include "software/installed_app_info.h"

#include <cctype>
#include <sstream>

#include "frame/registry_reader.h"
#include "frame/schema_names.h"
#include "host/os_specific.h"
#include "software/software_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

// Property to registry value, in the order the table is read.
const std::vector<std::pair<const char*, const char*>> kInstalledAppProperties = {
    {constants::kProductIdentifyingNumber, "Version"},
    {constants::kProductName, "DisplayName"},
    {constants::kProductVersion, "DisplayVersion"},
    {constants::kProductInstallDate, "InstallDate"},
    {constants::kProductVendor, "Publisher"},
    {constants::kCollectionID, "CollectionID"},
    {constants::kSystemID, "SystemID"},
};

const char* const kApplicationKeys[] = {constants::kUninstallKey, constants::kUninstallWow64Key,
                                        constants::kInstallerProductsKey};

std::string withoutCharacters(const std::string& text, int (*drop)(int)) {
  std::string kept;
  for (char c : text)
    if (!drop(static_cast<unsigned char>(c))) kept += c;
  return kept;
}

int isAsciiLetter(int c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
int isDecimalDigit(int c) { return c >= '0' && c <= '9'; }

}  // namespace

InstalledAppInfo::InstalledAppInfo(boost::shared_ptr<ICIMClass> cls) : GetInfo(cls) {
  RegistryReader().enumerateSubKeys(hotfixKeys, constants::kHotfixKey);
}

bool InstalledAppInfo::hasValue(const FactMap& record, const std::string& name) {
  auto found = record.find(name);
  return found != record.end() && !found->second.empty();
}

const PatternSet& InstalledAppInfo::hotfixPatterns() {
  if (hotfixPatternSet) return *hotfixPatternSet;
  // A fix's id is its sub-key's name; a name holds the fix when it holds
  // the id, or its letters, a blank and its digits ("KB 123456").
  std::vector<std::string> patterns = {"Hotfix"};
  const size_t prefix = std::string(constants::kHotfixKey).size() + 1;
  for (const std::string& path : hotfixKeys) {
    const std::string id = path.substr(prefix);
    patterns.push_back(id);
    patterns.push_back(withoutCharacters(id, isDecimalDigit) + " " +
                       withoutCharacters(id, isAsciiLetter));
  }
  hotfixPatternSet = std::make_unique<PatternSet>(patterns);
  return *hotfixPatternSet;
}

bool InstalledAppInfo::isHotfix(std::string name) { return hotfixPatterns().occursIn(name); }

bool InstalledAppInfo::isApplication(const FactMap& record) {
  if (!hasValue(record, constants::kProductName)) return false;
  const std::string& name = record.at(constants::kProductName);
  if (!seenIndex.insert(name).second) return false;
  seenNames.push_back(name);
  return !isHotfix(name);
}

void InstalledAppInfo::rewriteInstallerVersion(FactMap& record) {
  if (!hasValue(record, constants::kProductVersion)) return;
  std::istringstream stream(record[constants::kProductVersion]);
  unsigned int packed = 0;
  stream >> packed;
  record[constants::kProductVersion] = std::to_string(packed >> 24) + "." +
                                       std::to_string((packed >> 16) & 0xFF) + "." +
                                       std::to_string(packed & 0xFFFF);
}

FactList InstalledAppInfo::getInfo() {
  FactMap wanted;
  for (const auto& row : kInstalledAppProperties) wanted[row.first] = row.second;
  FactList result;
  RegistryReader reader;
  for (const std::string key : kApplicationKeys) {
    const bool installer = key == constants::kInstallerProductsKey;
    if (installer) {
      wanted[constants::kProductVersion] = "Version";
      wanted[constants::kProductName] = "ProductName";
    }
    std::vector<std::string> subKeys;
    reader.enumerateSubKeys(subKeys, key);
    if (subKeys.empty()) {
      logger->logDebug(constants::kUnableToEnumerateSubKeys);
      continue;
    }
    // Every sub-key may add a name: room made once, not by rehashing a hundred thousand.
    seenIndex.reserve(seenIndex.size() + subKeys.size());
    for (const std::string& subKey : subKeys) {
      FactMap record = reader.readValues(subKey, wanted);
      if (!isApplication(record)) continue;
      if (installer) rewriteInstallerVersion(record);
      result.push_back(std::move(record));
    }
  }
  if (result.empty()) logger->logDebug(constants::kUnableToListApplications);
  return result;
}

PropertyMap InstalledAppInfo::getKeyProperties() {
  return {{constants::kSystemID, TCIMValue(TOSSpecific::GetMachineName())},
          {constants::kCollectionID, TCIMValue("")}};
}

int InstalledAppInfo::getCIMInstances() {
  return buildInstancesFromRecords(getInfo(), getKeyProperties(),
                                   "InstalledAppInfo::getCIMInstances ");
}

}  // namespace installedapps_col
