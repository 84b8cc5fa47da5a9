#include "winapi/formats/registry_key_names.h"

#include <stdexcept>

#include "winapi/support/code_pages.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

namespace {

const RootKey kRootKeys[] = {
    {L"HKEY_LOCAL_MACHINE", L"HKLM", true, Hive::LocalMachine, {}},
    {L"HKEY_CURRENT_USER", L"HKCU", true, Hive::CurrentUser, {}},
    // Windows shows HKLM\SOFTWARE\Classes (under the user's own classes) as HKEY_CLASSES_ROOT.
    {L"HKEY_CLASSES_ROOT", L"HKCR", true, Hive::LocalMachine, {L"SOFTWARE", L"Classes"}},
    {L"HKEY_USERS", L"HKU", false, Hive::LocalMachine, {}},
    {L"HKEY_CURRENT_CONFIG", L"HKCC", false, Hive::LocalMachine, {}},
    {L"HKEY_PERFORMANCE_DATA", L"", false, Hive::LocalMachine, {}},
    {L"HKEY_DYN_DATA", L"", false, Hive::LocalMachine, {}},
};

}  // namespace

const RootKey* findRootKey(std::wstring_view name) {
  for (const RootKey& root : kRootKeys)
    if (equalsIgnoringCase(name, root.name) ||
        (!root.abbreviation.empty() && equalsIgnoringCase(name, root.abbreviation)))
      return &root;
  return nullptr;
}

std::string RegistryKeyName::text() const {
  std::wstring name(root->name);
  for (const std::wstring& part : path) name += L'\\' + part;
  return wideToUtf8(name);
}

RegistryKeyName parseRegistryKeyName(const std::string& text) {
  std::wstring wide = utf8ToWide(text);
  std::wstring_view rest = wide;
  std::size_t slash = rest.find(L'\\');
  const RootKey* root = findRootKey(rest.substr(0, slash));
  if (!root)
    throw std::invalid_argument("\"" + text +
                                "\" is no registry key: its first name is no root key such as "
                                "HKEY_LOCAL_MACHINE or HKLM");
  RegistryKeyName name{root, {}};
  while (slash != std::wstring_view::npos) {
    rest.remove_prefix(slash + 1);
    slash = rest.find(L'\\');
    std::wstring_view part = rest.substr(0, slash);
    if (part.empty())
      throw std::invalid_argument("\"" + text +
                                  "\" is no registry key: a name between backslashes is empty");
    name.path.emplace_back(part);
  }
  return name;
}

}  // namespace winapi
