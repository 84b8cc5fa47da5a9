// Loading an offline volume. Figures only a running machine has (memory, performance, uptime)
// are not in its hives, so the calls that need them fail as Windows fails when it cannot tell.
// Its user is the one of its profile, logged on as when the inventory runs in that user's
// session; its accounts are those of its SAM hive.
#include "winapi/offline_volume.h"

#include <algorithm>
#include <optional>
#include <string>

#include "winapi/hive_file.h"
#include "winapi/host_path.h"
#include "winapi/machine.h"
#include "winapi/registry_machine_facts.h"
#include "winapi/unicode_text.h"
#include "winapi/volume_accounts.h"
#include "winapi/volume_profiles.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

const char kConfig[] = "C:\\Windows\\System32\\config\\";
const RegistryPath kMemoryManagement{L"SYSTEM", L"CurrentControlSet", L"Control",
                                     L"Session Manager", L"Memory Management"};
constexpr std::uintmax_t kPageSize = 4096;

std::optional<std::string> hostFile(const fs::path& dir, const std::string& windowsPath) {
  return findHostPath(dir.string(), windowsPath);
}

// The page files PagingFiles names ("C:\\pagefile.sys 0 0", "?:\\pagefile.sys" for a system
// managed one on the system drive) that are on the volume, sized by their files; a machine that
// is not running has none of their pages in use.
void addPageFiles(const Registry& registry, const fs::path& dir, nlohmann::json& facts) {
  const RegistryKey* key = registry.root(Hive::LocalMachine).find(kMemoryManagement);
  const RegistryValue* paging = key ? key->value(L"PagingFiles") : nullptr;
  if (!paging) return;
  std::wstring entries = fromUtf16Bytes(paging->data);
  for (std::size_t at = 0, end; at < entries.size(); at = end + 1) {
    end = std::min(entries.find(L'\0', at), entries.size());
    std::string entry = wideToUtf8(entries.substr(at, end - at));
    std::string name = entry.substr(0, entry.find(' '));
    if (name.rfind("?:", 0) == 0) name[0] = 'C';
    auto file = hostFile(dir, name);
    std::error_code error;
    std::uintmax_t size = file ? fs::file_size(*file, error) : 0;
    if (!file || error) continue;
    facts["pageFiles"].push_back({{"name", "\\??\\" + name},
                                  {"totalSize", size / kPageSize},
                                  {"totalInUse", 0},
                                  {"peakUsage", 0}});
  }
}

void addUser(const VolumeProfile& profile, nlohmann::json& facts) {
  addProfileUser(facts, profile.name, profile.folder);
  facts["environment"]["HOMEDRIVE"] = profile.folder.substr(0, 2);
  facts["environment"]["HOMEPATH"] = profile.folder.substr(2);
  addLoggedOnUser(facts, profile.name);
}

// The boot store is read when it can be; a damaged one leaves the machine without it, as
// bcdedit then has nothing to show.
void mountBootStore(Registry& registry, const fs::path& dir) {
  auto store = hostFile(dir, "C:\\Boot\\BCD");
  if (!store) return;
  try {
    mountHiveFile(registry.root(Hive::LocalMachine).makeSubKey(L"BCD00000000"), *store);
  } catch (const MachineError&) {
    registry.root(Hive::LocalMachine).removeSubKey(L"BCD00000000");
  }
}

// `user` empty: the volume's default profile.
std::shared_ptr<Machine> loadVolume(const fs::path& dir, const std::string& user,
                                    std::optional<std::int64_t> now) {
  auto registry = std::make_shared<Registry>();
  for (const char* hive : {"SOFTWARE", "SYSTEM"})
    if (auto file = hostFile(dir, std::string(kConfig) + hive)) mountNamedHive(*registry, *file);
  if (auto file = hostFile(dir, std::string(kConfig) + "SAM")) mountSamHive(*registry, *file);
  const RegistryKey& machine = registry->root(Hive::LocalMachine);
  std::optional<VolumeProfile> profile =
      user.empty() ? defaultProfile(machine, dir) : namedProfile(machine, dir, user);
  if (profile) mountHiveFile(registry->root(Hive::CurrentUser), profile->hive);
  mountBootStore(*registry, dir);
  if (!now) now = registryShutdownTime(*registry);
  nlohmann::json facts = registryMachineFacts(*registry, now);
  addSamUsers(*registry, facts);
  if (profile) addUser(*profile, facts);
  addPageFiles(*registry, dir, facts);
  return Machine::fromDescription(facts, dir.string(), registry);
}

}  // namespace

bool isOfflineVolume(const fs::path& dir) {
  std::error_code error;
  return !fs::exists(dir / "drive_c", error) &&
         hostFile(dir, std::string(kConfig) + "SOFTWARE").has_value();
}

std::shared_ptr<Machine> loadOfflineVolume(const fs::path& dir, std::optional<std::int64_t> now) {
  return loadVolume(dir, "", now);
}

std::shared_ptr<Machine> loadOfflineVolumeAs(const fs::path& dir, const std::string& user,
                                             std::optional<std::int64_t> now) {
  return loadVolume(dir, user, now);
}

}  // namespace winapi
