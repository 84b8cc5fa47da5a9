#include "winapi/machine/volume_profiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "test_hive.h"
#include "test_machine.h"
#include "winapi/machine/machine.h"

namespace fs = std::filesystem;

namespace winapi {
namespace {

const char kCurrentVersion[] =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

// ProfileList's entries: SID and ProfileImagePath.
using Profiles = std::vector<std::pair<std::string, std::string>>;

// A path as a .reg string holds it.
std::string escaped(const std::string& path) {
  std::string text;
  for (char c : path) text += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return text;
}

std::string software(const std::string& version, const Profiles& profiles,
                     const std::string& extra) {
  std::string text = std::string(kCurrentVersion) + "]\n\"CurrentVersion\"=\"" + version +
                     "\"\n\"CurrentBuildNumber\"=\"1\"\n\n";
  for (const auto& [sid, path] : profiles)
    text += std::string(kCurrentVersion) + "\\ProfileList\\" + sid + "]\n\"ProfileImagePath\"=\"" +
            escaped(path) + "\"\n\n";
  return text + extra;
}

// A volume with `software` as its SOFTWARE hive and an NTUSER.DAT in each folder of `hives`,
// each written an hour after the one before; each hive names its folder in WHO.
void makeVolume(const TempDirectory& volume, const std::string& softwareText,
                const std::vector<std::string>& hives) {
  volume.makeDirectory("Windows/System32/config");
  writeHive(volume.path() + "/Windows/System32/config/SOFTWARE", "HKEY_LOCAL_MACHINE\\SOFTWARE",
            softwareText);
  auto written = fs::file_time_type::clock::now() - std::chrono::hours(24);
  for (const std::string& folder : hives) {
    volume.makeDirectory(folder);
    std::string hive = volume.path() + "/" + folder + "/NTUSER.DAT";
    writeHive(hive, "HKEY_CURRENT_USER",
              "[HKEY_CURRENT_USER\\Environment]\n\"WHO\"=\"" + folder + "\"\n\n");
    fs::last_write_time(hive, written += std::chrono::hours(1));
  }
}

std::string who(const Machine& machine) { return machine.environment().find("WHO")->value; }

TEST(VolumeProfiles, TheLastInteractiveUserWinsOverTheNewestHive) {
  const Profiles profiles{{"S-1-5-18", "%SystemDrive%\\Windows\\System32\\config\\systemprofile"},
                          {"S-1-5-21-1-2-3-1001", "%SystemDrive%\\Users\\alice"},
                          {"S-1-5-21-1-2-3-1002", "%SystemDrive%\\Users\\bob"},
                          {"S-1-5-21-1-2-3-1003", "%SystemDrive%\\Users\\carol"}};
  // carol's folder has no hive; the system's own profile is not a user's, newest as it is.
  // Since Vista, Winlogon's DefaultUserName is not the last user.
  const std::vector<std::string> hives{"Users/alice", "Users/bob",
                                       "Windows/System32/config/systemprofile"};
  const std::string logonUI =
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Authentication\\"
      "LogonUI]\n\"LastLoggedOnUser\"=\"";
  const std::string winlogon =
      std::string(kCurrentVersion) + "\\Winlogon]\n\"DefaultUserName\"=\"alice\"\n\n";
  const std::pair<std::string, std::string> cases[] = {
      {logonUI + ".\\\\alice\"\n\n" + winlogon, "Users/alice"},
      {logonUI + "PC\\\\ALICE\"\n\n", "Users/alice"},
      {logonUI + ".\\\\carol\"\n\n", "Users/bob"},
      {winlogon, "Users/bob"}};
  for (const auto& [extra, expected] : cases) {
    TempDirectory volume;
    makeVolume(volume, software("6.3", profiles, extra), hives);
    auto machine = Machine::load(volume.path());
    EXPECT_EQ(who(*machine), expected) << extra;
  }
}

TEST(VolumeProfiles, BeforeVistaProfilesAreInDocumentsAndSettingsAndWinlogonNamesTheUser) {
  TempDirectory volume;
  makeVolume(
      volume,
      software("5.1",
               {{"S-1-5-21-1-2-3-1003", "%SystemDrive%\\Documents and Settings\\alice"},
                {"S-1-5-21-1-2-3-1004", "%SystemDrive%\\Documents and Settings\\bob"}},
               std::string(kCurrentVersion) + "\\Winlogon]\n\"DefaultUserName\"=\"alice\"\n\n"),
      {"Documents and Settings/alice", "Documents and Settings/bob"});
  auto machine = Machine::load(volume.path());
  EXPECT_EQ(who(*machine), "Documents and Settings/alice");
  EXPECT_EQ(machine->description()["userName"], "alice");
  EXPECT_EQ(machine->environment().find("USERPROFILE")->value, "C:\\Documents and Settings\\alice");
  EXPECT_EQ(machine->environment().find("HOMEPATH")->value, "\\Documents and Settings\\alice");

  EXPECT_EQ(who(*Machine::load(volume.path(), {"BOB", std::nullopt, std::nullopt})),
            "Documents and Settings/bob");
  try {
    Machine::load(volume.path(), {"carol", std::nullopt, std::nullopt});
    ADD_FAILURE() << "carol has no profile";
  } catch (const MachineError& error) {
    EXPECT_EQ(std::string(error.what()),
              volume.path() +
                  ": no profile named carol (profiles: C:\\Documents and Settings\\alice, "
                  "C:\\Documents and Settings\\bob)");
  }
}

}  // namespace
}  // namespace winapi
