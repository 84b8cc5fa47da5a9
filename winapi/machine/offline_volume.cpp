// Loading an offline volume. Figures only a running machine has (memory, performance, uptime)
// are not in its hives, so the calls that need them fail as Windows fails when it cannot tell.
// Its user is the one of its profile, logged on as when the inventory runs in that user's
// session; its accounts are those of its SAM hive.
#include "winapi/machine/offline_volume.h"

#include <algorithm>
#include <optional>
#include <string>

#include "winapi/files/folder_files.h"
#include "winapi/machine/hive_file.h"
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

// The page files PagingFiles names ("C:\\pagefile.sys 0 0", "?:\\pagefile.sys" for a system
// managed one on the system drive) that are on the volume, sized by their files; a machine that
// is not running has none of their pages in use.
void addPageFiles(const Registry& registry, const MachineFiles& files, nlohmann::json& facts) {
  const RegistryKey* key = registry.root(Hive::LocalMachine).find(kMemoryManagement);
  const RegistryValue* paging = key ? key->value(L"PagingFiles") : nullptr;
  if (!paging) return;
  std::wstring entries = fromUtf16Bytes(paging->data);
  for (std::size_t at = 0, end; at < entries.size(); at = end + 1) {
    end = std::min(entries.find(L'\0', at), entries.size());
    std::string entry = wideToUtf8(entries.substr(at, end - at));
    std::string name = entry.substr(0, entry.find(' '));
    if (name.rfind("?:", 0) == 0) name[0] = 'C';
    std::optional<FileEntry> file = files.find(name);
    if (!file || file->directory) continue;
    facts["pageFiles"].push_back({{"name", "\\??\\" + name},
                                  {"totalSize", file->size / kPageSize},
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

// Where a volume keeps its boot store, when it does: Boot\BCD (Windows' own volume, a "System
// Reserved" partition), or EFI\Microsoft\Boot\BCD (an EFI system partition).
std::optional<std::string> bootStore(const MachineFiles& system) {
  for (const char* store : {"C:\\Boot\\BCD", "C:\\EFI\\Microsoft\\Boot\\BCD"})
    if (system.find(store)) return store;
  return std::nullopt;
}

}  // namespace

std::shared_ptr<Machine> loadWindowsVolume(const VolumeSource& source, const std::string& user,
                                           std::optional<std::int64_t> now) {
  const MachineFiles& windows = *source.windows;
  auto registry = std::make_shared<Registry>();
  HiveReading hives;
  for (const char* hive : {"SOFTWARE", "SYSTEM"})
    if (windows.find(std::string(kConfig) + hive))
      hives.add(*mountNamedHive(*registry, {windows, std::string(kConfig) + hive}));
  RegistryKey& localMachine = registry->root(Hive::LocalMachine);
  if (windows.find(std::string(kConfig) + "SAM"))
    hives.add(mountOptionalHive(localMachine, L"SAM", {windows, std::string(kConfig) + "SAM"}));
  std::optional<VolumeProfile> profile = user.empty() ? defaultProfile(localMachine, windows)
                                                      : namedProfile(localMachine, windows, user);
  if (profile)
    hives.add(mountHiveFile(registry->root(Hive::CurrentUser), {windows, profile->hive}));
  // The system partition's store, else the Windows volume's.
  const MachineFiles& system = source.system ? *source.system : windows;
  const MachineFiles& boot = bootStore(system) ? system : windows;
  if (auto store = bootStore(boot))
    hives.add(mountOptionalHive(localMachine, L"BCD00000000", {boot, *store}));
  nlohmann::json facts = registryMachineFacts(*registry, now ? now : clockAtRest(*registry, hives));
  addSamUsers(*registry, facts);
  if (profile) addUser(*profile, facts);
  std::shared_ptr<const MachineFiles> files =
      source.lettered ? source.lettered(*registry) : source.windows;
  addPageFiles(*registry, *files, facts);
  return Machine::fromDescription(facts, source.name, registry, std::move(hives.warnings),
                                  std::move(files));
}

namespace {

VolumeSource folderVolume(const fs::path& dir) {
  VolumeSource source;
  source.name = dir.string();
  source.windows = std::make_shared<FolderFiles>(FolderFiles::volume(dir));
  return source;
}

}  // namespace

bool isOfflineVolume(const fs::path& dir) {
  std::error_code error;
  return !fs::exists(dir / "drive_c", error) &&
         FolderFiles::volume(dir).find(std::string(kConfig) + "SOFTWARE").has_value();
}

std::shared_ptr<Machine> loadOfflineVolume(const fs::path& dir, std::optional<std::int64_t> now) {
  return loadWindowsVolume(folderVolume(dir), "", now);
}

std::shared_ptr<Machine> loadOfflineVolumeAs(const fs::path& dir, const std::string& user,
                                             std::optional<std::int64_t> now) {
  return loadWindowsVolume(folderVolume(dir), user, now);
}

}  // namespace winapi
