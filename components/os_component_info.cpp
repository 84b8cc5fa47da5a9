#include "components/os_component_info.h"

#include <climits>
#include <sstream>

#include "components/component_names.h"
#include "components/inf_file.h"
#include "components/wow64_redirection.h"
#include "frame/frame_texts.h"
#include "frame/registry_reader.h"
#include "frame/schema_names.h"
#include "host/root_object.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr UINT kDirectorySize = 256;

// The directory that `query` writes, or empty when the call fails or the
// directory does not fit.
std::string directoryText(UINT(WINAPI* query)(LPSTR, UINT)) {
  char buffer[kDirectorySize] = {};
  const UINT length = query(buffer, kDirectorySize);
  return length > 0 && length < kDirectorySize ? std::string(buffer) : std::string();
}

}  // namespace

int OSComponentInfo::getCIMInstances() {
  getCIMClass();
  const FactList records = getInfo();
  int count = 0;
  for (const FactMap& record : records) {
    try {
      buildCIMInstance(getCIMProperties(record));
      ++count;
    } catch (const TVRXException& e) {
      logger->logDebug(std::string(constants::kComponentInstancePrefix) +
                       constants::kErrorGeneratingInstances + " " +
                       std::to_string(e.GetStatusCode()));
    }
  }
  return count;
}

std::string OSComponentInfo::getINFDirectory() {
  const std::string windows = directoryText(GetSystemWindowsDirectoryA);
  return windows.empty() ? windows : windows + constants::kInfSubdirectory;
}

std::vector<ComponentFileEntry> OSComponentInfo::getINFFileList() {
  std::vector<ComponentFileEntry> entries;
  InfFile sysoc(constants::kSysocInf);
  INFCONTEXT context;
  if (!sysoc.findFirstLine(constants::kComponentsSection, nullptr, &context)) {
    logger->logDebug(constants::kNoComponentSections);
    return entries;
  }
  const long count = sysoc.lineCount(constants::kComponentsSection);
  for (long index = 0; index < count; ++index) {
    if (!sysoc.lineByIndex(constants::kComponentsSection, static_cast<DWORD>(index), &context))
      continue;
    const std::string hidden = InfFile::stringField(&context, 4);
    const std::string infName = InfFile::stringField(&context, 3);
    const std::string dllName = InfFile::stringField(&context, 1);
    // A family without an INF file of its own has no components to list.
    if (infName.empty()) continue;
    entries.push_back({infName, dllName, hidden.empty() ? "false" : "true"});
  }
  return entries;
}

int OSComponentInfo::getInstalledState(std::string componentName) {
  const FactMap found =
      RegistryReader().readValues(constants::kOcManagerKey, {{componentName, componentName}});
  auto value = found.find(componentName);
  if (value == found.end()) return 0;
  int state = 0;
  // A text that is no number reads as 0; one too large for an int as
  // INT_MAX, which counts as no state.
  std::istringstream(value->second) >> state;
  return state < INT_MAX ? state + 1 : 0;
}

FactList OSComponentInfo::getInfo() {
  const std::string infDirectory = getINFDirectory();
  FactList records;
  for (const ComponentFileEntry& entry : getINFFileList())
    addComponents(records, infDirectory, entry);
  addBackupProgram(records);
  return records;
}

void OSComponentInfo::addComponents(FactList& records, const std::string& infDirectory,
                                    const ComponentFileEntry& entry) {
  const std::string infPath = infDirectory + "\\" + entry.infName;
  InfFile inf(infPath);
  if (!inf.isOpen()) {
    logger->logDebug(constants::kInfPrefix + infPath + constants::kInfMissing);
    return;
  }
  const char* section = constants::kOptionalComponentsSection;
  INFCONTEXT context;
  if (!inf.findFirstLine(section, nullptr, &context)) return;
  const long count = inf.lineCount(section);
  for (long index = 0; index < count; ++index) {
    if (!inf.lineByIndex(section, static_cast<DWORD>(index), &context)) continue;
    const std::string name = InfFile::lineText(&context);
    // A name that cannot be read names no section either.
    if (name.empty()) continue;
    records.push_back(componentRecord(inf, name, entry, infPath));
  }
}

FactMap OSComponentInfo::componentRecord(const InfFile& inf, const std::string& name,
                                         const ComponentFileEntry& entry,
                                         const std::string& infPath) {
  FactMap record = {{constants::kName, name}};
  record[constants::kProductName] = inf.keyText(name.c_str(), constants::kOptionDescKey);
  record[constants::kTip] = inf.keyText(name.c_str(), constants::kTipKey);
  record[constants::kParent] = inf.keyText(name.c_str(), constants::kParentKey);
  const std::string version = findComponentVersion(entry.dllName);
  record[constants::kVendor] = constants::kMicrosoftCorporation;
  record[constants::kVersion] = version;
  record[constants::kIdentifyingNumber] = version;
  record[constants::kDLLName] = entry.dllName;
  record[constants::kINFName] = infPath;
  record[constants::kComponentInstalled] = std::to_string(getInstalledState(name));
  record[constants::kHidden] = entry.hidden;
  return record;
}

std::string OSComponentInfo::findComponentVersion(const std::string& dllName) {
  const std::string systemDirectory = directoryText(GetSystemDirectoryA);
  const std::string setupPath = systemDirectory.empty()
                                    ? systemDirectory
                                    : systemDirectory + constants::kSetupSubdirectory + dllName;
  std::string description;
  std::string version = getFileVersion(setupPath, description);
  if (!version.empty()) return version;
  Wow64Redirection redirection;
  if (!redirection.isLoaded()) return version;
  redirection.runWithoutRedirection([&] { version = getFileVersion(setupPath, description); });
  if (version.empty()) version = findDllInSysPath(dllName, description);
  return version;
}

void OSComponentInfo::addBackupProgram(FactList& records) {
  const std::string fileName = constants::kBackupProgram;
  const std::string backupName = fileName.substr(0, fileName.find(".exe"));
  std::string description;
  std::string version = findDllInSysPath(fileName, description);
  if (version.empty()) {
    Wow64Redirection redirection;
    redirection.runWithoutRedirection([&] { version = findDllInSysPath(fileName, description); });
  }
  if (version.empty()) return;
  // Written whether or not the plug-in's own logging is switched on.
  TRootObject::GetCoreLogger()->Log(
      3, constants::kBackupNameLabel + fileName + ". " + constants::kBackupVersionLabel + version);
  records.push_back({{constants::kName, backupName},
                     {constants::kProductName, description},
                     {constants::kVendor, constants::kMicrosoftCorporation},
                     {constants::kVersion, version},
                     {constants::kIdentifyingNumber, version},
                     {constants::kDLLName, fileName},
                     {constants::kComponentInstalled, constants::kBackupInstalled}});
}

}  // namespace installedapps_col
