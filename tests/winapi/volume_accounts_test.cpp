#include "winapi/machine/volume_accounts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "test_hive.h"
#include "test_machine.h"
#include "test_sam.h"
#include "winapi/files/folder_files.h"
#include "winapi/include/lm.h"
#include "winapi/include/windows.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/machine.h"
#include "winapi/support/little_endian.h"

namespace fs = std::filesystem;

namespace winapi {
namespace {

const char kConfig[] = "Windows/System32/config";

std::string configFile(const TempDirectory& volume, const char* hive) {
  return volume.path() + "/" + kConfig + "/" + hive;
}

TestAccount alice() {
  TestAccount account{"alice", 1001, 0x210};  // normal, password never expires
  account.lastLogon = fileTimeOf("2026-11-20T08:00:00Z");
  account.passwordLastSet = fileTimeOf("2026-11-01T00:00:00Z");
  account.countryCode = 44;
  account.fullName = "Alice Doe";
  account.comment = "Accountant";
  account.homeDirectory = "C:\\Home\\alice";
  return account;
}

TestAccount guest() {
  TestAccount account{"Guest", 501, 0x15};  // disabled, no password required, normal
  account.comment = "Built-in account";
  return account;
}

// Mallory's full name lies beyond her V record.
std::string samText() {
  TestAccount mallory{"mallory", 1002};
  std::string v = variableRecord(mallory);
  putLittleEndian(v, 2 * 12, static_cast<std::uint32_t>(v.size()), 4);
  putLittleEndian(v, 2 * 12 + 4, 2, 4);
  return samAccountRegText(alice()) + samAccountRegText(guest()) +
         samAccountRegText(mallory.name, mallory.rid, fixedRecord(mallory), v);
}

// Alice's profile folder is spelt otherwise than her account.
void makeVolume(const TempDirectory& volume) {
  volume.makeDirectory(kConfig);
  volume.makeDirectory("Users/Alice");
  writeHive(configFile(volume, "SOFTWARE"), "HKEY_LOCAL_MACHINE\\SOFTWARE",
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft]\n\n");
  writeHive(configFile(volume, "SYSTEM"), "HKEY_LOCAL_MACHINE\\SYSTEM",
            "[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\n\"Current\"=dword:00000001\n\n"
            "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\ComputerName\\ComputerName]\n"
            "\"ComputerName\"=\"PC\"\n\n");
  writeHive(configFile(volume, "SAM"), kSamPrefix, samText());
  writeHive(volume.path() + "/Users/Alice/NTUSER.DAT", "HKEY_CURRENT_USER",
            "[HKEY_CURRENT_USER\\Environment]\n\n");
}

// The records of every account NetUserEnum gives, as (name, user id, flags).
std::vector<std::tuple<std::wstring, DWORD, DWORD>> enumeratedUsers(NET_API_STATUS& status) {
  LPBYTE buffer = nullptr;
  DWORD read = 0, total = 0;
  status = NetUserEnum(nullptr, 3, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr);
  std::vector<std::tuple<std::wstring, DWORD, DWORD>> users;
  for (DWORD i = 0; i < read; ++i) {
    const USER_INFO_3& user = reinterpret_cast<USER_INFO_3*>(buffer)[i];
    users.emplace_back(user.usri3_name, user.usri3_user_id, user.usri3_flags);
  }
  NetApiBufferFree(buffer);
  return users;
}

TEST(VolumeAccounts, UsersComeFromTheSamRecordsCountingToTheMachinesNow) {
  TempDirectory dir;
  writeHive(dir.path() + "/SAM", kSamPrefix, samText());
  Registry registry;
  const winapi::FolderFiles files = winapi::FolderFiles::volume(dir.path());
  mountOptionalHive(registry.root(Hive::LocalMachine), L"SAM", {files, "C:\\SAM"});
  nlohmann::json facts{{"now", "2026-11-22T10:15:30Z"}};
  addSamUsers(registry, facts);
  // In the order of their names; mallory's damaged record leaves her out.
  EXPECT_EQ(facts["users"], nlohmann::json::parse(R"([
      {"name": "alice", "userId": 1001, "fullName": "Alice Doe", "comment": "Accountant",
       "flags": 66049, "homeDir": "C:\\Home\\alice", "countryCode": 44,
       "passwordAge": 1851330, "lastLogon": 1795161600},
      {"name": "Guest", "userId": 501, "fullName": "", "comment": "Built-in account",
       "flags": 547, "homeDir": "", "countryCode": 0, "passwordAge": 0, "lastLogon": 0}])"));
}

TEST(VolumeAccounts, TheProfilesUserIsLoggedOnAndNetUserEnumGivesTheSamAccounts) {
  TempDirectory volume;
  makeVolume(volume);
  std::shared_ptr<Machine> machine = Machine::load(volume.path());
  EXPECT_EQ(machine->description()["loggedOn"], nlohmann::json::parse(R"([
      {"user": "alice", "domain": "PC", "logonServer": "\\\\PC"}])"));
  EXPECT_NE(machine->registry()->root(Hive::LocalMachine).find({L"SAM", L"SAM", L"Domains"}),
            nullptr);
  setCurrentMachine(machine);
  NET_API_STATUS status;
  auto users = enumeratedUsers(status);
  setCurrentMachine(nullptr);
  EXPECT_EQ(status, NERR_Success);
  EXPECT_EQ(users, (std::vector<std::tuple<std::wstring, DWORD, DWORD>>{{L"alice", 1001, 0x10201},
                                                                        {L"Guest", 501, 0x223}}));
}

TEST(VolumeAccounts, ASamThatCannotBeReadLeavesTheAccountsOutAndTheRestLoaded) {
  TempDirectory volume;
  makeVolume(volume);
  for (std::uintmax_t size : {std::uintmax_t{0x1800}, std::uintmax_t{10}}) {
    fs::resize_file(configFile(volume, "SAM"), size);
    std::shared_ptr<Machine> machine = Machine::load(volume.path());
    EXPECT_EQ(machine->computerName(), "PC");
    EXPECT_FALSE(machine->description().contains("users"));
    EXPECT_EQ(machine->description()["loggedOn"][0]["user"], "Alice");
    EXPECT_EQ(machine->registry()->root(Hive::LocalMachine).subKey(L"SAM"), nullptr);
    setCurrentMachine(machine);
    NET_API_STATUS status;
    enumeratedUsers(status);
    setCurrentMachine(nullptr);
    EXPECT_EQ(status, static_cast<NET_API_STATUS>(RPC_S_SERVER_UNAVAILABLE)) << size;
  }
}

}  // namespace
}  // namespace winapi
