// An offline volume inventories as its described twin does without writing under it (its hives'
// folder is read-only during the run), a broken hive stops the run with one line naming it, a
// dirty hive without its logs is read as it stands, the log told so, and its accounts are those
// of its SAM hive.
#include <nlohmann/json.hpp>

#include "tests/vrxhost/volume_twin.h"
#include "tests/winapi/test_sam.h"

namespace {

// Every entry's name, modification time and bytes: what a write under `root` would change.
std::string fingerprint(const fs::path& root) {
  std::string print;
  for (const auto& entry : fs::recursive_directory_iterator(root))
    print += entry.path().string() + "@" +
             std::to_string(entry.last_write_time().time_since_epoch().count()) + ":" +
             (entry.is_regular_file() ? readFile(entry.path()) : "") + "\n";
  return print;
}

TEST_F(Vrxhost, AVolumeInventoriesAsItsDescribedTwin) {
  makeVolumeTwin(dir / "volume");
  // Accounts (the volume's come from its SAM) and live figures differ between the two.
  const std::string registryClasses = "QELTO_ComputerSystem QELTO_InstalledApplication";
  const Result described = run(registryClasses + " --machine " + registryFixesMachine().string());
  const std::string before = fingerprint(dir / "volume");
  fs::permissions(dir / "volume/Windows/System32/config", fs::perms::owner_write,
                  fs::perm_options::remove);
  const Result volume = run(registryClasses + " --machine " + (dir / "volume").string());
  fs::permissions(dir / "volume/Windows/System32/config", fs::perms::owner_write,
                  fs::perm_options::add);
  EXPECT_EQ(fingerprint(dir / "volume"), before);
  ASSERT_EQ(volume.status, 0) << volume.err;
  EXPECT_NE(volume.out.find("KB958644"), std::string::npos);
  EXPECT_EQ(volume.out, described.out);

  const fs::path system = dir / "volume/Windows/System32/config/SYSTEM";
  fs::resize_file(system, 0x1100);
  const Result broken = run("--machine " + (dir / "volume").string());
  EXPECT_EQ(broken.status, 1);
  EXPECT_EQ(broken.err.rfind("vrxhost: " + system.string() + ": ", 0), 0u) << broken.err;
  EXPECT_EQ(broken.err.find('\n'), broken.err.size() - 1) << broken.err;
}

TEST_F(Vrxhost, AVolumesAccountsComeFromItsSam) {
  makeVolumeTwin(dir / "volume");
  winapi::TestAccount alice{"alice", 1001, 0x11};  // normal, disabled
  alice.fullName = "Alice Doe";
  alice.comment = "Accountant";
  alice.lastLogon = winapi::fileTimeOf("2026-11-20T08:00:00Z");
  winapi::writeHive((dir / "volume/Windows/System32/config/SAM").string(), winapi::kSamPrefix,
                    winapi::samAccountRegText(alice) +
                        winapi::samAccountRegText(winapi::TestAccount{"bob", 1002}));
  fs::create_directories(dir / "volume/Users/alice");
  winapi::writeHive((dir / "volume/Users/alice/NTUSER.DAT").string(), "HKEY_CURRENT_USER",
                    "[HKEY_CURRENT_USER\\Environment]\n\n");
  const Result accounts = run("QELTO_Account --machine " + (dir / "volume").string());
  ASSERT_EQ(accounts.status, 0) << accounts.err;
  // Alice is the one logged on: her account is read; bob, not logged on, is not.
  const nlohmann::json account = nlohmann::json::parse(accounts.out)["instances"][1]["properties"];
  EXPECT_EQ(account["UserID"], "alice");
  EXPECT_EQ(account["Name"], "Alice Doe");
  EXPECT_EQ(account["Descriptions"], nlohmann::json::array({"Accountant"}));
  EXPECT_EQ(account["AccountEnabled"], false);
  EXPECT_EQ(account["Domain"], "SRV-2003");
  EXPECT_EQ(account["LogonServer"], "\\\\SRV-2003");
  EXPECT_EQ(account["LastLogon"].get<std::string>().substr(0, 4), "2026");
  EXPECT_EQ(accounts.out.find("bob"), std::string::npos);
}

TEST_F(Vrxhost, ADirtyHiveWithoutItsLogsIsReadAndTheLogToldSo) {
  makeVolumeTwin(dir / "volume");
  const fs::path system = dir / "volume/Windows/System32/config/SYSTEM";
  std::string hive = readFile(system);
  winapi::patchBaseBlock(hive, 4, 0x7777);  // a write begun and never finished
  std::ofstream(system, std::ios::binary) << hive;
  const Result result = run("QELTO_InstalledApplication --log-level 2 --log " +
                            (dir / "log").string() + " --machine " + (dir / "volume").string());
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("SRV-2003"), std::string::npos);
  EXPECT_NE(readFile(dir / "log")
                .find("2\t" + system.string() +
                      ": dirty hive without usable transaction logs; read as it "
                      "stands\n"),
            std::string::npos)
      << readFile(dir / "log");
}

}  // namespace
