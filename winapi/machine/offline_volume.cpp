// Loading an offline volume. Figures only a running machine has (memory, performance, uptime)
// are not in its hives, so the calls that need them fail as Windows fails when it cannot tell.
// Its user is the one of its profile, logged on as when the inventory runs in that user's
// session; its accounts are those of its SAM hive.
#include "winapi/machine/offline_volume.h"

#include <algorithm>
#include <optional>
#include <string>

#include "winapi/machine/hive_file.h"
#include "winapi/machine/host_path.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/registry_machine_facts.h"
#include "winapi/machine/volume_accounts.h"
#include "winapi/machine/volume_profiles.h"
#include "winapi/support/calendar.h"
#include "winapi/support/unicode_text.h"

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

// The moment the volume stopped: its last shutdown, else the last write to its hives.
std::optional<std::int64_t> clockAtRest(const Registry& registry, const HiveReading& hives) {
  if (auto shutdown = registryShutdownTime(registry)) return shutdown;
  if (hives.lastWritten == 0) return std::nullopt;
  return millisecondsFromFileTime(hives.lastWritten);
}

// `user` empty: the volume's default profile.
std::shared_ptr<Machine> loadVolume(const fs::path& dir, const std::string& user,
                                    std::optional<std::int64_t> now) {
  auto registry = std::make_shared<Registry>();
  HiveReading hives;
  for (const char* hive : {"SOFTWARE", "SYSTEM"})
    if (auto file = hostFile(dir, std::string(kConfig) + hive))
      if (auto reading = mountNamedHive(*registry, *file)) hives.add(*reading);
  RegistryKey& localMachine = registry->root(Hive::LocalMachine);
  if (auto file = hostFile(dir, std::string(kConfig) + "SAM"))
    hives.add(mountOptionalHive(localMachine, L"SAM", *file));
  std::optional<VolumeProfile> profile =
      user.empty() ? defaultProfile(localMachine, dir) : namedProfile(localMachine, dir, user);
  if (profile) hives.add(mountHiveFile(registry->root(Hive::CurrentUser), profile->hive));
  if (auto store = hostFile(dir, "C:\\Boot\\BCD"))
    hives.add(mountOptionalHive(localMachine, L"BCD00000000", *store));
  nlohmann::json facts = registryMachineFacts(*registry, now ? now : clockAtRest(*registry, hives));
  addSamUsers(*registry, facts);
  if (profile) addUser(*profile, facts);
  addPageFiles(*registry, dir, facts);
  return Machine::fromDescription(facts, dir.string(), registry, std::move(hives.warnings));
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
