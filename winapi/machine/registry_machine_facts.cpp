// Reading the description from the registry keys Windows itself builds these figures from.
#include "winapi/machine/registry_machine_facts.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "winapi/formats/reg_text.h"
#include "winapi/include/windows.h"
#include "winapi/machine/registry_product.h"
#include "winapi/machine/registry_time_zone.h"
#include "winapi/machine/registry_values.h"
#include "winapi/support/calendar.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/little_endian.h"
#include "winapi/support/text.h"

namespace winapi {

namespace {

const RegistryPath kCurrentVersion{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion"};
const RegistryPath kControl{L"SYSTEM", L"CurrentControlSet", L"Control"};

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
    if (!isText(value) || value.name.empty()) continue;
    std::string text =
        value.type == REG_EXPAND_SZ ? expand(textOf(value), environment) : textOf(value);
    std::string name = toUtf8(value.name);
    if (const nlohmann::json* before = variable(environment, name, &name))
      if (user && equalsIgnoringCase(name, "Path")) text = before->get<std::string>() + ";" + text;
    environment[name] = text;
  }
}

// The year of the machine's local standard time, whose daylight rules the zone follows.
int zoneYear(const RegistryKey& machine, std::int64_t now) {
  auto bias = dwordAt(machine, below(kControl, {L"TimeZoneInformation"}), L"Bias");
  return civilFromMilliseconds(now -
                               std::int64_t{static_cast<std::int32_t>(bias.value_or(0))} * 60000)
      .year;
}

void addSystem(const RegistryKey& machine, nlohmann::json& facts) {
  nlohmann::json system = nlohmann::json::object();
  if (auto root = textAt(machine, kCurrentVersion, L"SystemRoot")) {
    system["windowsDirectory"] = *root;
    system["systemDirectory"] = *root + "\\system32";
  }
  auto architecture = textAt(machine, below(kControl, {L"Session Manager", L"Environment"}),
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
    if (auto path = textAt(machine, folder.key, folder.value))
      environment[folder.variable] = expand(*path, environment);
}

}  // namespace

nlohmann::json registryMachineFacts(const Registry& registry, std::optional<std::int64_t> now) {
  const RegistryKey& machine = registry.root(Hive::LocalMachine);
  nlohmann::json facts = nlohmann::json::object();
  if (auto name =
          textAt(machine, below(kControl, {L"ComputerName", L"ComputerName"}), L"ComputerName"))
    facts["computerName"] = *name;
  if (auto version = registryVersion(machine); !version.is_null()) facts["version"] = version;
  addSystem(machine, facts);
  std::int64_t clock = now.value_or(std::chrono::duration_cast<std::chrono::milliseconds>(
                                        std::chrono::system_clock::now().time_since_epoch())
                                        .count());
  if (now) facts["now"] = formatUtcTime(*now);
  if (auto zone = registryTimeZone(machine, zoneYear(machine, clock)); !zone.is_null())
    facts["timeZone"] = zone;
  // What Windows sets before it reads the Environment keys, which refer to them.
  nlohmann::json environment = nlohmann::json::object();
  if (auto root = textAt(machine, kCurrentVersion, L"SystemRoot")) {
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

std::optional<std::int64_t> registryShutdownTime(const Registry& registry) {
  auto stopped =
      bytesAt(registry.root(Hive::LocalMachine), below(kControl, {L"Windows"}), L"ShutdownTime", 8);
  if (!stopped) return std::nullopt;
  std::uint64_t fileTime = littleEndian64(*stopped, 0);
  if (fileTime == 0) return std::nullopt;
  return millisecondsFromFileTime(fileTime);
}

}  // namespace winapi
