#include "frame/registry_reader.h"

#include <cstring>

#include "frame/wow64.h"

namespace installedapps_col {
namespace {

constexpr DWORD kFirstExpansionBuffer = 255;
constexpr DWORD kSubKeyNameBuffer = 4096;

struct KeyInfo {
  DWORD subKeys = 0;
  DWORD values = 0;
  DWORD longestName = 0;
  DWORD longestData = 0;
};

bool queryInfo(HKEY key, KeyInfo& info) {
  return RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &info.subKeys, nullptr, nullptr,
                          &info.values, &info.longestName, &info.longestData, nullptr,
                          nullptr) == ERROR_SUCCESS;
}

}  // namespace

bool RegistryReader::openKey(HKEY* result, HKEY hive, const std::string& path) {
  REGSAM mask = KEY_READ;
  if (runsUnderWow64() && path.find("Uninstall") == std::string::npos)
    mask = KEY_READ | KEY_WOW64_64KEY;
  return RegOpenKeyExA(hive, path.c_str(), 0, mask, result) != ERROR_SUCCESS;
}

bool RegistryReader::closeKey(HKEY* key) {
  if (!key || !*key) return true;
  const bool failed = RegCloseKey(*key) != ERROR_SUCCESS;
  *key = nullptr;
  return failed;
}

std::string RegistryReader::expandEnvironment(const char* text) {
  std::vector<char> buffer(kFirstExpansionBuffer, '\0');
  DWORD size = ExpandEnvironmentStringsA(text, buffer.data(), kFirstExpansionBuffer);
  if (size > kFirstExpansionBuffer) {
    buffer.assign(size, '\0');
    size = ExpandEnvironmentStringsA(text, buffer.data(), size);
  }
  return size != 0 ? std::string(buffer.data()) : std::string(text);
}

std::string RegistryReader::decodeValue(const char* data, DWORD type, DWORD size) {
  switch (type) {
    case REG_SZ:
      return std::string(data, strnlen(data, size));
    case REG_EXPAND_SZ:
      return expandEnvironment(std::string(data, strnlen(data, size)).c_str());
    case REG_DWORD: {
      if (size < sizeof(DWORD)) return std::string();
      DWORD number;
      std::memcpy(&number, data, sizeof number);
      return std::to_string(number);
    }
    case REG_MULTI_SZ: {
      // Join the strings by blanks: every terminator but the last pair.
      std::string text(data, size);
      const size_t end = size >= 2 ? size - 2 : 0;
      for (size_t zero = text.find('\0'); zero != std::string::npos && zero < end;
           zero = text.find('\0', zero + 2))
        text[zero] = ' ';
      return text.substr(0, text.find('\0'));
    }
    default:
      return std::string();
  }
}

FactMap RegistryReader::readAllValues(HKEY hive, std::string path) {
  FactMap values;
  HKEY key = nullptr;
  openKey(&key, hive, path);
  KeyInfo info;
  if (!key) return values;
  if (!queryInfo(key, info) || info.values == 0) {
    closeKey(&key);
    return values;
  }
  for (DWORD index = 0; index < info.values; ++index) {
    std::vector<char> name(info.longestName + 1, '\0');
    std::vector<char> data(info.longestData + 1, '\0');
    DWORD nameSize = info.longestName + 1, dataSize = info.longestData, type = 0;
    if (RegEnumValueA(key, index, name.data(), &nameSize, nullptr, &type,
                      reinterpret_cast<LPBYTE>(data.data()), &dataSize) != ERROR_SUCCESS ||
        name[0] == '\0')
      continue;
    const std::string text = decodeValue(data.data(), type, dataSize);
    if (!text.empty()) values.insert({name.data(), text});
  }
  closeKey(&key);
  return values;
}

FactMap RegistryReader::readAllValues(std::string path) {
  return readAllValues(HKEY_LOCAL_MACHINE, path);
}

std::string RegistryReader::queryValue(HKEY key, const std::string& name, DWORD longestData) {
  std::vector<char> data(longestData + 1, '\0');
  DWORD size = longestData, type = 0;
  if (RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(data.data()),
                       &size) != ERROR_SUCCESS)
    return std::string();
  return decodeValue(data.data(), type, size);
}

FactMap RegistryReader::readValues(const std::string& path, const FactMap& wanted) {
  FactMap values;
  RegistryKey opened(path);
  KeyInfo info;
  if (!opened.key || wanted.empty() || !queryInfo(opened.key, info)) return values;
  for (const auto& entry : wanted) {
    const std::string text = queryValue(opened.key, entry.second, info.longestData);
    if (!text.empty()) {
      values.insert({entry.first, text});
    } else if (entry.second == "DisplayVersion") {
      const std::string major = queryValue(opened.key, "VersionMajor", info.longestData);
      if (!major.empty())
        values.insert(
            {entry.first, major + "." + queryValue(opened.key, "VersionMinor", info.longestData)});
    }
  }
  return values;
}

void RegistryReader::enumerateSubKeys(std::vector<std::string>& result, std::string path) {
  RegistryKey opened(path);
  KeyInfo info;
  if (!opened.key || !queryInfo(opened.key, info)) return;
  std::vector<char> name(kSubKeyNameBuffer, '\0');
  for (DWORD index = 0; index < info.subKeys; ++index) {
    DWORD size = kSubKeyNameBuffer;
    // A sub-key that vanished since the count was taken is passed over.
    if (RegEnumKeyExA(opened.key, index, name.data(), &size, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS)
      continue;
    result.push_back(path + "\\" + std::string(name.data(), size));
  }
}

RegistryKey::RegistryKey(const std::string& path) {
  openFailed = RegistryReader().openKey(&key, HKEY_LOCAL_MACHINE, path);
  if (openFailed) key = nullptr;
}

RegistryKey::~RegistryKey() { RegistryReader().closeKey(&key); }

}  // namespace installedapps_col
