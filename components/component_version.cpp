// The versions of component files: a file's version resource, and the
// search for a file along PATH.
#include <cstdio>
#include <cstring>
#include <vector>

#include "components/component_names.h"
#include "components/os_component_info.h"

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <winver.h>
// clang-format on

namespace installedapps_col {

namespace {

// The text of one value of the string table of `language` and `codePage`;
// empty when the value is missing or has no length.
std::string queryString(const std::vector<char>& data, WORD language, WORD codePage,
                        const char* name) {
  char subBlock[64];
  std::snprintf(subBlock, sizeof subBlock, "\\StringFileInfo\\%04x%04x\\%s", language, codePage,
                name);
  void* value = nullptr;
  UINT length = 0;
  if (!VerQueryValueA(data.data(), subBlock, &value, &length) || length == 0 || !value)
    return std::string();
  const char* text = static_cast<const char*>(value);
  return std::string(text, strnlen(text, length));
}

}  // namespace

std::string OSComponentInfo::getFileVersion(std::string path, std::string& description) {
  description.clear();
  DWORD handle = 0;
  const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &handle);
  if (size == 0) return std::string();
  std::vector<char> data(size);
  if (!GetFileVersionInfoA(path.c_str(), handle, size, data.data())) return std::string();
  void* translation = nullptr;
  UINT length = 0;
  if (!VerQueryValueA(data.data(), "\\VarFileInfo\\Translation", &translation, &length) ||
      length < 2 * sizeof(WORD) || !translation)
    return std::string();
  // Only the first language and code page of the table count.
  WORD languageAndCodePage[2];
  std::memcpy(languageAndCodePage, translation, sizeof languageAndCodePage);
  std::string version =
      queryString(data, languageAndCodePage[0], languageAndCodePage[1], "FileVersion");
  // "5.1.2600.5512 (xpsp.080413-2111)": the build comment is no part of it.
  version = version.substr(0, version.find(' '));
  description =
      queryString(data, languageAndCodePage[0], languageAndCodePage[1], "FileDescription");
  return version;
}

std::string OSComponentInfo::findDllInSysPath(std::string fileName, std::string& description) {
  const char* variable = vrx_getenv("PATH");
  const std::string path = variable ? variable : "";
  size_t position = 0;
  for (;;) {
    const size_t separator = path.find(';', position);
    const std::string directory =
        path.substr(position, separator == std::string::npos ? separator : separator - position);
    const std::string version = getFileVersion(directory + "\\" + fileName, description);
    if (separator == std::string::npos) {
      if (version.empty())
        logger->logDebug(constants::kPathSearchPrefix + fileName + constants::kNotInPath);
      return version;
    }
    if (!version.empty()) return version;
    position = separator + 1;
  }
}

}  // namespace installedapps_col
