// OSConfiguration's boot reading: a boot.ini file when one opens, else
// the boot configuration store as the registry shows it.
#include <algorithm>
#include <memory>

#include "frame/cim_value_builder.h"
#include "frame/platform.h"
#include "frame/text_file.h"
#include "host/os_specific.h"
#include "os/boot_records.h"
#include "os/os_configuration.h"
#include "os/os_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr DWORD kDriveBuffer = 254;
constexpr DWORD kElementBuffer = 8192;
// Seconds "bcdedit" may take to make the store visible.
constexpr int kBcdeditLimit = 300;

std::string elementKey(const std::string& object, const char* element) {
  return constants::kBcdObjectsKey + object + constants::kBcdElementsKey + element;
}

// boot1.ini on the system drive, else the boot.ini of the first drive from
// C: on that has one; `path` is the one that opened.
std::unique_ptr<std::istream> openBootFile(const std::string& systemDrive, std::string& path) {
  path = systemDrive + "\\boot1.ini";
  std::unique_ptr<std::istream> file = openTextFile(path);
  for (char drive = 'C'; !file && drive <= 'Z'; ++drive) {
    path = std::string(1, drive) + ":\\boot.ini";
    file = openTextFile(path);
  }
  return file;
}

TCIMValue stringArray(const std::vector<std::string>& texts) {
  std::vector<TCIMValue> elements(texts.begin(), texts.end());
  return TCIMValue(TCIMType(CIM_STRING), static_cast<unsigned int>(elements.size()), elements);
}

}  // namespace

PropertyMap OSConfiguration::getBootProperties() {
  PropertyMap values;
  const TCIMValue name = getBootConfigurationValue(kBootName);
  if (!name.IsNull()) values[constants::kBootConfigurationFileName] = name;
  const TCIMValue contents = getBootConfigurationValue(kBootContents);
  if (!contents.IsNull()) values[constants::kBootConfigurationFileContents] = contents;
  return values;
}

TCIMValue OSConfiguration::getBootConfigurationValue(int mode) {
  SetErrorMode(SEM_FAILCRITICALERRORS);
  logger->logDebug(constants::kCollectingBootProperties);
  std::vector<char> systemDrive(kDriveBuffer + 1, '\0');
  if (ExpandEnvironmentStringsA("%SystemDrive%", systemDrive.data(), kDriveBuffer) == 0) {
    logger->logError(constants::kNoSystemDrive);
    return TCIMValue();
  }
  std::string path;
  const std::unique_ptr<std::istream> file = openBootFile(systemDrive.data(), path);
  return file ? bootFileValue(mode, *file, path) : bootStoreValue(mode);
}

TCIMValue OSConfiguration::bootFileValue(int mode, std::istream& file, const std::string& path) {
  if (mode == kBootName) return TCIMValue(path);
  const TCIMValue lines = stringArray(readBootFileLines(file, *logger));
  SetErrorMode(0);
  logger->logDebug(constants::kBootIniDone);
  return lines;
}

TCIMValue OSConfiguration::bootStoreValue(int mode) {
  // The store is seen in the registry only once bcdedit has run; what it
  // prints is not needed.
  TOSSpecific::SpawnProcess("bcdedit", kBcdeditLimit);
  if (readBcdElement(elementKey(constants::kBootManagerObject, constants::kBcdDisplayOrder))
          .empty()) {
    logger->logError(constants::kBootIniNotOpened);
    return TCIMValue();
  }
  if (mode == kBootName) return TCIMValue(constants::kWindowsBootManager);
  return stringArray(getBcdDescriptions());
}

std::vector<std::string> OSConfiguration::getBcdDescriptions() {
  std::string order =
      readBcdElement(elementKey(constants::kBootManagerObject, constants::kBcdDisplayOrder));
  std::replace(order.begin(), order.end(), '}', '{');
  std::vector<std::string> blocks;
  for (const std::string& guid : splitString(order, '{'))
    blocks.push_back(constants::kInstalledOSLabel +
                     readBcdElement(elementKey("{" + guid + "}", constants::kBcdDescription)) +
                     "\n\n");
  blocks.push_back(
      constants::kBootManagerLabel +
      readBcdElement(elementKey(constants::kBootManagerObject, constants::kBcdDescription)) +
      "\n\n");
  blocks.push_back(applicationBlock(constants::kMemoryTestLabel, constants::kMemoryTestObject));
  // The resume object's element holds its GUID with the braces.
  const std::string resume =
      readBcdElement(elementKey(constants::kBootManagerObject, constants::kBcdResumeObject));
  blocks.push_back(applicationBlock(constants::kResumeLabel, resume));
  return blocks;
}

std::string OSConfiguration::applicationBlock(const std::string& label, const std::string& object) {
  return label + readBcdElement(elementKey(object, constants::kBcdDescription)) + "\n" +
         constants::kLocationLabel +
         readBcdElement(elementKey(object, constants::kBcdApplicationPath)) + "\n\n";
}

std::string OSConfiguration::readBcdElement(std::string keyPath) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, keyPath.c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
    return std::string();
  // One byte beyond the queried size keeps every text terminated.
  std::vector<char> data(kElementBuffer + 1, '\0');
  DWORD size = kElementBuffer, type = 0;
  std::string text;
  if (RegQueryValueExA(key, constants::kBcdElementValue, nullptr, &type,
                       reinterpret_cast<LPBYTE>(data.data()), &size) == ERROR_SUCCESS)
    text = bcdElementText(type, data.data(), size);
  RegCloseKey(key);
  return text;
}

}  // namespace installedapps_col
