// Loading an offline volume. Figures only a running machine has (memory, performance, uptime,
// logged-on users) are not in its hives, so the calls that need them fail as Windows fails when
// it cannot tell. Its user is the profile whose NTUSER.DAT changed last: the one used last.
#include "winapi/offline_volume.h"

#include <algorithm>
#include <optional>
#include <string>

#include "winapi/hive_file.h"
#include "winapi/host_path.h"
#include "winapi/machine.h"
#include "winapi/registry_machine_facts.h"
#include "winapi/unicode_text.h"

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

struct Profile {
  std::string name;
  fs::path hive;
};

// The profile under C:\Users whose NTUSER.DAT was written last; no name when there is none.
Profile lastUsedProfile(const fs::path& dir) {
  Profile last;
  fs::file_time_type lastWrite = fs::file_time_type::min();
  auto users = hostFile(dir, "C:\\Users");
  if (!users) return last;
  std::error_code error;
  for (fs::directory_iterator it(*users, error), end; !error && it != end; it.increment(error)) {
    auto hive = hostFile(dir, "C:\\Users\\" + it->path().filename().string() + "\\NTUSER.DAT");
    if (!hive) continue;
    fs::file_time_type written = fs::last_write_time(*hive, error);
    if (!error && written > lastWrite) {
      lastWrite = written;
      last = {it->path().filename().string(), *hive};
    }
    error.clear();
  }
  return last;
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

void addUser(const Profile& profile, nlohmann::json& facts) {
  addProfileUser(facts, profile.name, "C:\\Users\\" + profile.name);
  facts["environment"]["HOMEDRIVE"] = "C:";
  facts["environment"]["HOMEPATH"] = "\\Users\\" + profile.name;
}

std::shared_ptr<Machine> loadVolume(const fs::path& dir, const Profile& profile) {
  auto registry = std::make_shared<Registry>();
  HiveReading hives;
  for (const char* hive : {"SOFTWARE", "SYSTEM"})
    if (auto file = hostFile(dir, std::string(kConfig) + hive))
      if (auto reading = mountNamedHive(*registry, *file)) hives.add(*reading);
  if (!profile.hive.empty())
    hives.add(mountHiveFile(registry->root(Hive::CurrentUser), profile.hive));
  nlohmann::json facts = registryMachineFacts(*registry);
  if (!profile.name.empty()) addUser(profile, facts);
  addPageFiles(*registry, dir, facts);
  return Machine::fromDescription(facts, dir.string(), registry, std::move(hives.warnings));
}

}  // namespace

bool isOfflineVolume(const fs::path& dir) {
  std::error_code error;
  return !fs::exists(dir / "drive_c", error) &&
         hostFile(dir, std::string(kConfig) + "SOFTWARE").has_value();
}

std::shared_ptr<Machine> loadOfflineVolume(const fs::path& dir) {
  return loadVolume(dir, lastUsedProfile(dir));
}

std::shared_ptr<Machine> loadOfflineVolumeAs(const fs::path& dir, const std::string& user) {
  auto hive = hostFile(dir, "C:\\Users\\" + user + "\\NTUSER.DAT");
  if (user.find_first_of("\\/") != std::string::npos || !hive)
    throw MachineError((dir / "Users" / user / "NTUSER.DAT").string() + ": no such profile");
  return loadVolume(dir, {user, *hive});
}

}  // namespace winapi
