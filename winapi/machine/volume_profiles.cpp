#include "winapi/machine/volume_profiles.h"

#include <algorithm>
#include <cstdlib>

#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"
#include "winapi/support/text.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

namespace {

const RegistryPath kCurrentVersion{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion"};
const RegistryPath kProfileList{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion",
                                L"ProfileList"};
const RegistryPath kWinlogon{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion",
                             L"Winlogon"};
const RegistryPath kLogonUI{L"SOFTWARE",       L"Microsoft",      L"Windows",
                            L"CurrentVersion", L"Authentication", L"LogonUI"};
// Accounts of this machine or a domain, and cloud accounts; the others are the system's own.
const wchar_t* const kUserSids[] = {L"S-1-5-21-", L"S-1-12-1-"};
const char kSystemDrive[] = "%SystemDrive%";
constexpr int kVistaMajorVersion = 6;

// Text up to its terminator; nullopt when the value is missing or not text.
std::optional<std::string> text(const RegistryKey* key, const wchar_t* name) {
  const RegistryValue* value = key ? key->value(name) : nullptr;
  if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ)) return std::nullopt;
  std::wstring wide = fromUtf16Bytes(value->data);
  return wideToUtf8(wide.substr(0, wide.find(L'\0')));
}

// The volume is the system drive of the Windows on it.
std::string onVolume(std::string path) {
  std::size_t length = sizeof kSystemDrive - 1;
  if (equalsIgnoringCase(path.substr(0, length), kSystemDrive)) path.replace(0, length, "C:");
  while (path.size() > 3 && path.back() == '\\') path.pop_back();
  return path;
}

std::optional<VolumeProfile> profileAt(const MachineFiles& volume, const std::string& folder) {
  std::string hive = folder + "\\NTUSER.DAT";
  std::optional<FileEntry> entry = volume.find(hive);
  if (!entry || entry->directory) return std::nullopt;
  return VolumeProfile{folder.substr(folder.find_last_of('\\') + 1), folder, hive,
                       entry->lastWritten};
}

bool isUserSid(const std::wstring& sid) {
  return std::any_of(std::begin(kUserSids), std::end(kUserSids),
                     [&](const wchar_t* prefix) { return sid.rfind(prefix, 0) == 0; });
}

std::vector<VolumeProfile> profilesUnder(const MachineFiles& volume, const std::string& directory) {
  std::vector<VolumeProfile> profiles;
  for (const FileEntry& entry : volume.list(directory))
    if (auto profile = profileAt(volume, directory + "\\" + entry.name))
      profiles.push_back(*profile);
  return profiles;
}

const VolumeProfile* named(const std::vector<VolumeProfile>& profiles, const std::string& name) {
  for (const VolumeProfile& profile : profiles)
    if (equalsIgnoringCase(profile.name, name)) return &profile;
  return nullptr;
}

std::optional<VolumeProfile> newest(const std::vector<VolumeProfile>& profiles) {
  std::optional<VolumeProfile> last;
  for (const VolumeProfile& profile : profiles)
    if (!last || profile.lastWritten > last->lastWritten) last = profile;
  return last;
}

// "PC\\alice" or ".\\alice" as the logon screen keeps it, without the domain.
std::optional<std::string> lastInteractiveUser(const RegistryKey& localMachine) {
  auto version = text(localMachine.find(kCurrentVersion), L"CurrentVersion");
  bool beforeVista = version && std::atoi(version->c_str()) < kVistaMajorVersion;
  auto user = beforeVista ? text(localMachine.find(kWinlogon), L"DefaultUserName")
                          : text(localMachine.find(kLogonUI), L"LastLoggedOnUser");
  if (!user) return std::nullopt;
  return user->substr(user->find_last_of('\\') + 1);
}

}  // namespace

std::vector<VolumeProfile> volumeProfiles(const RegistryKey& localMachine,
                                          const MachineFiles& volume) {
  std::vector<VolumeProfile> profiles;
  const RegistryKey* list = localMachine.find(kProfileList);
  if (list)
    for (const auto& account : list->subKeys())
      if (auto folder = text(account.get(), L"ProfileImagePath");
          folder && isUserSid(account->name()))
        if (auto profile = profileAt(volume, onVolume(*folder))) profiles.push_back(*profile);
  if (!profiles.empty()) return profiles;
  return profilesUnder(volume, onVolume(text(list, L"ProfilesDirectory").value_or("C:\\Users")));
}

std::optional<VolumeProfile> defaultProfile(const RegistryKey& localMachine,
                                            const MachineFiles& volume) {
  std::vector<VolumeProfile> profiles = volumeProfiles(localMachine, volume);
  if (auto user = lastInteractiveUser(localMachine))
    if (const VolumeProfile* profile = named(profiles, *user)) return *profile;
  return newest(profiles);
}

VolumeProfile namedProfile(const RegistryKey& localMachine, const MachineFiles& volume,
                           const std::string& name) {
  std::vector<VolumeProfile> profiles = volumeProfiles(localMachine, volume);
  if (const VolumeProfile* profile = named(profiles, name)) return *profile;
  std::string known;
  for (const VolumeProfile& profile : profiles)
    known += (known.empty() ? "" : ", ") + profile.folder;
  throw MachineError(volume.describe("C:\\") + ": no profile named " + name +
                     " (profiles: " + (known.empty() ? "none" : known) + ")");
}

}  // namespace winapi
