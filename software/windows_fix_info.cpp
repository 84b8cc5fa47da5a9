#include "software/windows_fix_info.h"

#include <set>

#include "frame/lower_case.h"
#include "frame/registry_reader.h"
#include "frame/schema_names.h"
#include "host/root_object.h"
#include "software/software_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr int kTraceLevel = 3;

}  // namespace

WindowsFixInfo::WindowsFixInfo()
    : fixValueNames({{constants::kProductName, "Description"},
                     {constants::kProductVersion, "DisplayVersion"},
                     {constants::kProductVendor, "Publisher"},
                     {constants::kInstalledBy, "InstalledBy"},
                     {constants::kProductInstallDate, "InstalledDate"}}) {}

FactList WindowsFixInfo::getInfo() {
  // The walk runs whichever route gives the result.
  KeyWorkList work = {{"", {constants::kUpdatesKey}}};
  while (!work.empty()) work = expandLevel(work);
  FactList result = getPropertiesFromWMI();
  if (result.empty()) {
    TRootObject::GetCoreLogger()->Log(kTraceLevel, constants::kTryFixesFromRegistry);
    result = getPropertiesFromRegistry();
  }
  return result;
}

KeyWorkList WindowsFixInfo::expandLevel(KeyWorkList work) {
  KeyWorkList next;
  for (const auto& entry : work) {
    for (const std::string& path : entry.second) {
      std::vector<std::string> children = expandKey(path);
      if (!children.empty()) next.insert({path, std::move(children)});
    }
  }
  return next;
}

std::vector<std::string> WindowsFixInfo::expandKey(std::string path) {
  std::vector<std::string> subKeys;
  RegistryReader().enumerateSubKeys(subKeys, path);
  std::vector<std::string> toWalk;
  if (subKeys.empty()) {
    fixKeys.push_back(path);
    return toWalk;
  }
  const std::string marker = lowerCase(path + constants::kFileListMarker);
  for (const std::string& subKey : subKeys) {
    if (lowerCase(subKey) == marker)
      fixKeys.push_back(path);
    else
      toWalk.push_back(subKey);
  }
  return toWalk;
}

FactList WindowsFixInfo::getPropertiesFromRegistry() {
  FactList result;
  std::set<std::string> seen;
  RegistryReader reader;
  for (const std::string& path : fixKeys) {
    FactMap raw = reader.readAllValues(path);
    const size_t separator = path.rfind('\\');
    if (separator != std::string::npos) {
      const FactMap namesake = reader.readAllValues(std::string(constants::kFixUninstallKey) +
                                                    "\\" + path.substr(separator + 1));
      raw.insert(namesake.begin(), namesake.end());
    }
    FactMap record = mapFixProperties(raw);
    auto name = record.find(constants::kProductName);
    if (name == record.end() || !seen.insert(name->second).second) continue;
    result.push_back(std::move(record));
  }
  return result;
}

FactMap WindowsFixInfo::mapFixProperties(FactMap raw) {
  FactMap record;
  for (const auto& row : fixValueNames) {
    auto value = raw.find(row.second);
    if (value != raw.end()) record[row.first] = value->second;
  }
  return record;
}

}  // namespace installedapps_col
