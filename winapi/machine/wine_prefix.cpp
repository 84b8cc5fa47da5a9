// Loading a Wine prefix. Wine writes its registry files when its server exits, so a prefix is
// read as it was when Wine last stopped. Its user is the profile of ProfileList (Wine has one,
// C:\users\<Unix user>); everything else comes from the registry as on Windows.
#include "winapi/machine/wine_prefix.h"

#include <string>

#include "winapi/formats/reg_text.h"
#include "winapi/formats/wine_reg_file.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/machine_file.h"
#include "winapi/machine/registry_machine_facts.h"
#include "winapi/machine/registry_values.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

// Far above a prefix's own (a fresh one is under 2 MiB), below what would exhaust memory.
constexpr std::uintmax_t kMaxFileMiB = 256;

const RegistryPath kProfileList{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion",
                                L"ProfileList"};

void merge(Registry& registry, Hive hive, const fs::path& file) {
  mergeWineRegFile(registry, hive, readMachineBytes(file.string(), kMaxFileMiB), file.string());
}

// The profile folder of the first user in ProfileList, "" when there is none.
std::string profilePath(const Registry& registry) {
  const RegistryKey* list = registry.root(Hive::LocalMachine).find(kProfileList);
  if (!list) return "";
  for (const auto& profile : list->subKeys()) {
    const RegistryValue* path = profile->value(L"ProfileImagePath");
    if (path && profile->name().rfind(L"S-1-5-21-", 0) == 0) return textOf(*path);
  }
  return "";
}

void addUser(const Registry& registry, nlohmann::json& facts) {
  std::string profile = profilePath(registry);
  if (profile.empty()) return;
  addProfileUser(facts, profile.substr(profile.find_last_of('\\') + 1), profile);
}

}  // namespace

bool isWinePrefix(const fs::path& dir) {
  std::error_code error;
  return fs::is_regular_file(dir / "system.reg", error) &&
         fs::is_regular_file(dir / "user.reg", error) && fs::is_directory(dir / "drive_c", error);
}

std::shared_ptr<Machine> loadWinePrefix(const fs::path& dir, std::optional<std::int64_t> now) {
  auto registry = std::make_shared<Registry>();
  merge(*registry, Hive::LocalMachine, dir / "system.reg");
  merge(*registry, Hive::CurrentUser, dir / "user.reg");
  nlohmann::json facts = registryMachineFacts(*registry, now);
  addUser(*registry, facts);
  return Machine::fromDescription(facts, dir.string(), registry);
}

}  // namespace winapi
