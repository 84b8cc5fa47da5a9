// Reading the description from the registry keys Windows itself builds these figures from.
#include "winapi/registry_machine_facts.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "winapi/code_pages.h"
#include "winapi/little_endian.h"
#include "winapi/reg_text.h"
#include "winapi/text.h"
#include "winapi/windows.h"

namespace winapi {

namespace {

const RegistryPath kCurrentVersion{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion"};
const RegistryPath kControl{L"SYSTEM", L"CurrentControlSet", L"Control"};

RegistryPath below(RegistryPath path, std::initializer_list<const wchar_t*> names) {
  path.insert(path.end(), names.begin(), names.end());
  return path;
}

const RegistryValue* valueOf(const RegistryKey& root, const RegistryPath& path,
                             const wchar_t* name) {
  const RegistryKey* key = root.find(path);
  return key ? key->value(name) : nullptr;
}

bool isText(std::uint32_t type) { return type == REG_SZ || type == REG_EXPAND_SZ; }

// Text up to its first terminator.
std::string textOf(const RegistryValue& value) {
  std::wstring text = fromUtf16Bytes(value.data);
  return toUtf8(text.substr(0, text.find(L'\0')));
}

std::optional<std::string> text(const RegistryKey& root, const RegistryPath& path,
                                const wchar_t* name) {
  const RegistryValue* value = valueOf(root, path, name);
  if (!value || !isText(value->type)) return std::nullopt;
  return textOf(*value);
}

// The variable of that name in any case, nullptr when there is none.
const nlohmann::json* variable(const nlohmann::json& environment, const std::string& name,
                               std::string* spelling = nullptr) {
  for (const auto& item : environment.items())
    if (equalsIgnoringCase(item.key(), name)) {
      if (spelling) *spelling = item.key();
      return &item.value();
    }
  return nullptr;
}

// %NAME% of a variable already set; others stay as they are, as Windows leaves them.
std::string expand(const std::string& text, const nlohmann::json& environment) {
  std::string result;
  std::size_t at = 0;
  for (std::size_t open; (open = text.find('%', at)) != std::string::npos;) {
    std::size_t close = text.find('%', open + 1);
    if (close == std::string::npos) break;
    result.append(text, at, open - at);
    std::string name = text.substr(open + 1, close - open - 1);
    if (const nlohmann::json* found = variable(environment, name)) {
      result += found->get<std::string>();
      at = close + 1;
    } else {
      result += '%' + name;
      at = close;
    }
  }
  return result + text.substr(at);
}

// A variable set before, in any case, is replaced under its first spelling; the user's Path
// goes after the machine's, as Windows builds a logon environment.
void addVariables(const RegistryKey* key, nlohmann::json& environment, bool user) {
  if (!key) return;
  for (const RegistryValue& value : key->values()) {
    if (!isText(value.type) || value.name.empty()) continue;
    std::string text =
        value.type == REG_EXPAND_SZ ? expand(textOf(value), environment) : textOf(value);
    std::string name = toUtf8(value.name);
    if (const nlohmann::json* before = variable(environment, name, &name))
      if (user && equalsIgnoringCase(name, "Path")) text = before->get<std::string>() + ";" + text;
    environment[name] = text;
  }
}

void addVersion(const RegistryKey& machine, nlohmann::json& facts) {
  auto number = text(machine, kCurrentVersion, L"CurrentVersion");
  auto build = text(machine, kCurrentVersion, L"CurrentBuildNumber");
  unsigned major = 0, minor = 0;
  if (!number || !build || std::sscanf(number->c_str(), "%u.%u", &major, &minor) != 2) return;
  nlohmann::json version{
      {"major", major},
      {"minor", minor},
      {"build", std::strtoul(build->c_str(), nullptr, 10)},
      {"platformId", VER_PLATFORM_WIN32_NT},
      {"csdVersion", text(machine, kCurrentVersion, L"CSDVersion").value_or("")}};
  auto product = text(machine, below(kControl, {L"ProductOptions"}), L"ProductType");
  if (product)
    version["productType"] = equalsIgnoringCase(*product, "WinNT")      ? VER_NT_WORKSTATION
                             : equalsIgnoringCase(*product, "LanmanNT") ? VER_NT_DOMAIN_CONTROLLER
                                                                        : VER_NT_SERVER;
  facts["version"] = version;
}

void addSystem(const RegistryKey& machine, nlohmann::json& facts) {
  nlohmann::json system = nlohmann::json::object();
  if (auto root = text(machine, kCurrentVersion, L"SystemRoot")) {
    system["windowsDirectory"] = *root;
    system["systemDirectory"] = *root + "\\system32";
  }
  auto architecture = text(machine, below(kControl, {L"Session Manager", L"Environment"}),
                           L"PROCESSOR_ARCHITECTURE");
  const std::pair<const char*, int> kArchitectures[] = {{"x86", PROCESSOR_ARCHITECTURE_INTEL},
                                                        {"AMD64", PROCESSOR_ARCHITECTURE_AMD64},
                                                        {"ARM64", 12},
                                                        {"IA64", 6}};
  for (auto [name, code] : kArchitectures)
    if (architecture && equalsIgnoringCase(*architecture, name))
      system["processorArchitecture"] = code;
  if (!system.empty()) facts["system"] = system;
}

nlohmann::json transition(const std::string& data, std::size_t at) {
  const char* fields[] = {"year", "month",  "dayOfWeek", "day",
                          "hour", "minute", "second",    "milliseconds"};
  nlohmann::json rule = nlohmann::json::object();
  for (std::size_t i = 0; i < 8; ++i) rule[fields[i]] = littleEndian(data, at + 2 * i, 2);
  return rule;
}

// The zone's rules are TZI of its Time Zones entry: Bias, StandardBias, DaylightBias, then the
// standard and daylight dates as SYSTEMTIMEs.
void addTimeZone(const RegistryKey& machine, nlohmann::json& facts) {
  auto name = text(machine, below(kControl, {L"TimeZoneInformation"}), L"TimeZoneKeyName");
  if (!name) return;
  RegistryPath zone = below(kCurrentVersion, {L"Time Zones"});
  zone.push_back(utf8ToWide(*name));
  const RegistryValue* rules = valueOf(machine, zone, L"TZI");
  if (!rules || rules->data.size() != 44) return;
  auto signedAt = [&](std::size_t at) {
    return static_cast<std::int32_t>(littleEndian(rules->data, at, 4));
  };
  facts["timeZone"] = {{"bias", signedAt(0)},
                       {"standardName", text(machine, zone, L"Std").value_or(*name)},
                       {"standardBias", signedAt(4)},
                       {"daylightName", text(machine, zone, L"Dlt").value_or(*name)},
                       {"daylightBias", signedAt(8)},
                       {"standardDate", transition(rules->data, 12)},
                       {"daylightDate", transition(rules->data, 28)}};
}

// The folders Windows names in every process's environment, from where it keeps them.
void addFolders(const RegistryKey& machine, nlohmann::json& environment) {
  const RegistryPath currentVersion{L"SOFTWARE", L"Microsoft", L"Windows", L"CurrentVersion"};
  const RegistryPath profileList = below(kCurrentVersion, {L"ProfileList"});
  struct Folder {
    const char* variable;
    const RegistryPath& key;
    const wchar_t* value;
  };
  const Folder kFolders[] = {{"ProgramFiles", currentVersion, L"ProgramFilesDir"},
                             {"ProgramFiles(x86)", currentVersion, L"ProgramFilesDir (x86)"},
                             {"CommonProgramFiles", currentVersion, L"CommonFilesDir"},
                             {"CommonProgramFiles(x86)", currentVersion, L"CommonFilesDir (x86)"},
                             {"ProgramData", profileList, L"ProgramData"},
                             {"ALLUSERSPROFILE", profileList, L"ProgramData"},
                             {"PUBLIC", profileList, L"Public"}};
  for (const Folder& folder : kFolders)
    if (auto path = text(machine, folder.key, folder.value))
      environment[folder.variable] = expand(*path, environment);
}

}  // namespace

nlohmann::json registryMachineFacts(const Registry& registry) {
  const RegistryKey& machine = registry.root(Hive::LocalMachine);
  nlohmann::json facts = nlohmann::json::object();
  if (auto name =
          text(machine, below(kControl, {L"ComputerName", L"ComputerName"}), L"ComputerName"))
    facts["computerName"] = *name;
  addVersion(machine, facts);
  addSystem(machine, facts);
  addTimeZone(machine, facts);
  // What Windows sets before it reads the Environment keys, which refer to them.
  nlohmann::json environment = nlohmann::json::object();
  if (auto root = text(machine, kCurrentVersion, L"SystemRoot")) {
    environment["SystemRoot"] = *root;
    environment["SystemDrive"] = root->substr(0, 2);
  }
  if (facts.contains("computerName")) environment["COMPUTERNAME"] = facts["computerName"];
  addFolders(machine, environment);
  addVariables(machine.find(below(kControl, {L"Session Manager", L"Environment"})), environment,
               false);
  addVariables(registry.root(Hive::CurrentUser).subKey(L"Environment"), environment, true);
  facts["environment"] = environment;
  return facts;
}

void addProfileUser(nlohmann::json& facts, const std::string& name, const std::string& profile) {
  facts["userName"] = name;
  nlohmann::json& environment = facts["environment"];
  environment["USERNAME"] = name;
  environment["USERPROFILE"] = profile;
  if (facts.contains("computerName")) environment["USERDOMAIN"] = facts["computerName"];
}

}  // namespace winapi
