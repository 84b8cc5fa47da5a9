#include "winapi/machine/offline_volume.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "test_hive.h"
#include "test_machine.h"
#include "winapi/machine/machine.h"

namespace fs = std::filesystem;

namespace winapi {
namespace {

const char kSoftware[] =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft]\n\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT]\n\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion]\n"
    "\"CurrentVersion\"=\"6.3\"\n\"CurrentMajorVersionNumber\"=dword:0000000a\n"
    "\"CurrentMinorVersionNumber\"=dword:00000000\n\"CurrentBuildNumber\"=\"19045\"\n"
    "\"SystemRoot\"=\"C:\\\\Windows\"\n\n";
const char kSystem[] =
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\n\"Current\"=dword:00000001\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001]\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control]\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\ComputerName]\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\ComputerName\\ComputerName]\n"
    "\"ComputerName\"=\"OFFLINE-PC\"\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\Session Manager\\Environment]\n"
    "\"Path\"=\"C:\\\\Windows\\\\system32\"\n\"TEMP\"=\"C:\\\\Windows\\\\Temp\"\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\ProductOptions]\n"
    "\"ProductType\"=\"ServerNT\"\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\Session Manager\\Memory Management]\n"
    // "?:\pagefile.sys", "D:\pagefile.sys 16 32": the second is on another volume.
    "\"PagingFiles\"=hex(7):3f,00,3a,00,5c,00,70,00,61,00,67,00,65,00,66,00,69,00,6c,00,65,00,"
    "2e,00,73,00,79,00,73,00,00,00,44,00,3a,00,5c,00,70,00,61,00,67,00,65,00,66,00,69,00,6c,00,"
    "65,00,2e,00,73,00,79,00,73,00,20,00,31,00,36,00,00,00,00,00\n\n";

// A volume whose path components are spelt as a real one's often are: not as looked up.
void makeVolume(const TempDirectory& volume) {
  volume.makeDirectory("WINDOWS/system32/CONFIG");
  writeHive(volume.path() + "/WINDOWS/system32/CONFIG/software", "HKEY_LOCAL_MACHINE\\SOFTWARE",
            kSoftware);
  writeHive(volume.path() + "/WINDOWS/system32/CONFIG/System", "HKEY_LOCAL_MACHINE\\SYSTEM",
            kSystem);
  volume.write("PAGEFILE.SYS", std::string(3 * 4096, '\0'));
  for (const char* user : {"olduser", "bob"}) {
    volume.makeDirectory(std::string("Users/") + user);
    writeHive(volume.path() + "/Users/" + user + "/NTUSER.DAT", "HKEY_CURRENT_USER",
              std::string("[HKEY_CURRENT_USER\\Environment]\n\"WHO\"=\"") + user +
                  "\"\n\"PATH\"=\"C:\\\\Tools\"\n\"temp\"=\"D:\\\\t\"\n\n");
  }
  fs::last_write_time(volume.path() + "/Users/olduser/NTUSER.DAT",
                      fs::file_time_type::clock::now() - std::chrono::hours(24));
}

TEST(OfflineVolume, DescriptionComesFromItsHivesAndItsLastUser) {
  TempDirectory volume;
  makeVolume(volume);
  ASSERT_TRUE(isOfflineVolume(volume.path()));
  auto machine = Machine::load(volume.path());
  EXPECT_EQ(machine->computerName(), "OFFLINE-PC");
  const nlohmann::json& description = machine->description();
  // What GetVersionEx answers a program without a compatibility manifest: 6.2 past Windows 8.
  EXPECT_EQ(description["version"]["major"], 6);
  EXPECT_EQ(description["version"]["minor"], 2);
  EXPECT_EQ(description["version"]["build"], 19045);
  EXPECT_EQ(description["userName"], "bob");
  EXPECT_EQ(description["pageFiles"],
            nlohmann::json::parse(R"([{"name": "\\??\\C:\\pagefile.sys", "totalSize": 3,
                                       "totalInUse": 0, "peakUsage": 0}])"));
  const EnvironmentBlock::Variable* who = machine->environment().find("WHO");
  ASSERT_NE(who, nullptr);
  EXPECT_EQ(who->value, "bob");
  // The user's variables replace the machine's in any case, but Path they lengthen.
  EXPECT_EQ(machine->environment().find("path")->value, "C:\\Windows\\system32;C:\\Tools");
  EXPECT_EQ(machine->environment().find("TEMP")->value, "D:\\t");
  EXPECT_EQ(machine->files().describe("c:\\windows\\SYSTEM32\\config\\SOFTWARE"),
            volume.path() + "/WINDOWS/system32/CONFIG/software");
}

TEST(OfflineVolume, AUserNamedPicksThatProfile) {
  TempDirectory volume;
  makeVolume(volume);
  auto machine = Machine::load(volume.path(), {"OLDUSER", std::nullopt, std::nullopt});
  EXPECT_EQ(machine->description()["userName"], "olduser");
  EXPECT_EQ(machine->environment().find("WHO")->value, "olduser");
  for (const char* user : {"nobody", "../Users/bob"}) {
    try {
      Machine::load(volume.path(), {user, std::nullopt, std::nullopt});
      ADD_FAILURE() << user << " was found";
    } catch (const MachineError& error) {
      EXPECT_EQ(
          std::string(error.what())
              .rfind(volume.path() + ": no profile named " + user + " (profiles: C:\\Users\\", 0),
          0u)
          << error.what();
    }
  }
}

TEST(OfflineVolume, ABrokenHiveNamesItsFile) {
  TempDirectory volume;
  makeVolume(volume);
  std::string system = volume.path() + "/WINDOWS/system32/CONFIG/System";
  fs::resize_file(system, 0x1800);
  try {
    Machine::load(volume.path());
    ADD_FAILURE() << "a truncated SYSTEM hive was read";
  } catch (const MachineError& error) {
    EXPECT_EQ(std::string(error.what()).rfind(system + ": ", 0), 0u) << error.what();
  }
}

TEST(OfflineVolume, ADescribedMachinesHivesWinOverItsRegFiles) {
  TempDirectory dir;
  dir.write("registry/software.reg",
            "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\"Both\"=\"reg\"\n"
            "\"RegOnly\"=\"reg\"\n\n");
  dir.makeDirectory("hives");
  writeHive(dir.path() + "/hives/SOFTWARE", "HKEY_LOCAL_MACHINE\\SOFTWARE",
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\"Both\"=\"hive\"\n\n");
  dir.write("hives/README", "not a hive");
  EXPECT_FALSE(isOfflineVolume(dir.path()));
  auto machine = Machine::load(dir.path());
  const RegistryKey* vendor =
      machine->registry()->root(Hive::LocalMachine).find({L"SOFTWARE", L"Vendor"});
  ASSERT_NE(vendor, nullptr);
  EXPECT_EQ(fromUtf16Bytes(vendor->value(L"Both")->data).substr(0, 4), L"hive");
  EXPECT_EQ(fromUtf16Bytes(vendor->value(L"RegOnly")->data).substr(0, 3), L"reg");
}

}  // namespace
}  // namespace winapi
