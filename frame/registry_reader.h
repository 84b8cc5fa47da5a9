// Reads registry keys as ordered maps of text. Failures are silent: a key
// that cannot be opened or a value that is not there gives nothing.
#pragma once

#include <string>
#include <vector>

#include "frame/platform.h"
#include "frame/types.h"

namespace installedapps_col {

class RegistryReader {
 public:
  virtual ~RegistryReader() {}

  // False on success, true on failure. A 32-bit process on 64-bit Windows
  // reads the 64-bit view, except for Uninstall keys, whose 32-bit view is
  // the one it means.
  bool openKey(HKEY* result, HKEY hive, const std::string& path);
  // False on success; true for a null key or a failed close.
  bool closeKey(HKEY* key);

  // Every named value with text, value name to text.
  FactMap readAllValues(HKEY hive, std::string path);
  FactMap readAllValues(std::string path);
  // `wanted` maps a result key to a value name under HKEY_LOCAL_MACHINE.
  FactMap readValues(const std::string& path, const FactMap& wanted);
  // Appends path + "\\" + name for each sub-key, in the registry's order.
  void enumerateSubKeys(std::vector<std::string>& result, std::string path);

  std::string decodeValue(const char* data, DWORD type, DWORD size);
  std::string expandEnvironment(const char* text);

 private:
  std::string queryValue(HKEY key, const std::string& name, DWORD longestData);
};

// An open key under HKEY_LOCAL_MACHINE for the life of the object.
class RegistryKey {
 public:
  explicit RegistryKey(const std::string& path);
  ~RegistryKey();
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  HKEY key = nullptr;
  int openFailed = 0;
};

}  // namespace installedapps_col
