#include <gtest/gtest.h>

#include "plugin/system_information.h"
#include "software/windows_fix_info.h"
#include "tests/frame/plugin_test_support.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using json = nlohmann::json;
using Names = std::vector<std::string>;
using Lines = std::vector<std::pair<int, std::string>>;

const char* const kTryRegistry = "WindowsFixInfo::getInfo(): try to get hot fixes from WMI.";
// WMI answers, but knows no fix.
const json kNoQueriedFixes = {{"wmi", {{"Win32_QuickFixEngineering", json::array()}}}};

// A key under HKLM\SOFTWARE\Microsoft with the given value lines.
std::string key(const std::string& path, const std::string& values = "") {
  return "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\" + path + "]\r\n" + values + "\r\n";
}
std::string update(const std::string& path, const std::string& values = "") {
  return key("Updates\\" + path, values);
}
std::string uninstall(const std::string& name, const std::string& values) {
  return key("Windows\\CurrentVersion\\Uninstall\\" + name, values);
}
std::string described(const std::string& name) { return "\"Description\"=\"" + name + "\"\r\n"; }

class RegistryFixes : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }

  FactList fixesOn(const std::string& reg) {
    RegistryMachine machine(reg, kNoQueriedFixes);
    return WindowsFixInfo().getInfo();
  }
  Names namesOn(const std::string& reg) {
    Names names;
    for (const FactMap& record : fixesOn(reg)) names.push_back(record.at("ProductName"));
    return names;
  }

  LogCapture log;
};

TEST_F(RegistryFixes, TheWalkFindsFixKeysLevelByLevel) {
  const Names names = namesOn(
      key("Updates", described("root")) +
      // Not a fix: it has sub-keys and none is a file list.
      update("a", described("a")) +
      // A fix for its file list, which is never entered.
      update("a\\B", described("B")) + update("a\\B\\FileList", described("list")) +
      update("a\\B\\FileList\\Deeper", described("deeper")) + update("a\\C", described("C")) +
      // A fix for its file list in any case, with a sub-key walked on.
      update("D", described("D")) + update("D\\fILELIST") + update("D\\E", described("E")) +
      update("F", described("F")) + update("F\\G", described("G")) +
      update("F\\G\\H", described("H")) + update("F\\G\\H\\I", described("I")));
  // A level's parents are taken in byte order ("D" < "F" < "a"), whatever
  // order the registry lists them in; the depth has no limit.
  EXPECT_EQ(names, (Names{"D", "E", "B", "C", "I"}));
  EXPECT_EQ(log.lines(), (Lines{{3, kTryRegistry}}));
}

TEST_F(RegistryFixes, AMissingTreeIsItsOwnFixKey) {
  // So its Uninstall namesake is read as a fix.
  EXPECT_EQ(namesOn(uninstall("Updates", described("namesake"))), Names{"namesake"});
  EXPECT_EQ(namesOn(key("Updates", described("childless"))), Names{"childless"});
}

TEST_F(RegistryFixes, FixKeysMergeWithTheirUninstallNamesakes) {
  const FactList records = fixesOn(
      update("Office\\KB1", "\"InstalledBy\"=\"admin\"\r\n\"InstalledDate\"=\"1/6/2009\"\r\n") +
      uninstall("KB1", described("From Uninstall") +
                           "\"DisplayVersion\"=\"1.0\"\r\n\"Publisher\"=\"Contoso\"\r\n"
                           "\"InstalledBy\"=\"other\"\r\n\"DisplayName\"=\"dropped\"\r\n") +
      update("Office\\KB2", described("Only here")) +
      update("Office\\KB3", described("Only here") + "\"DisplayVersion\"=\"3\"\r\n") +
      update("Office\\KB4", described("only here")) +
      // Value names count as spelled; a key without a name gives nothing.
      update("Office\\KB5", "\"description\"=\"lower case\"\r\n") + update("Office\\KB6") +
      uninstall("KB9", described("no fix key")));
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[0], (FactMap{{"ProductName", "From Uninstall"},
                                 {"ProductVersion", "1.0"},
                                 {"ProductVendor", "Contoso"},
                                 {"InstalledBy", "admin"},
                                 {"ProductInstallDate", "1/6/2009"}}));
  EXPECT_EQ(records[1], (FactMap{{"ProductName", "Only here"}}));
  EXPECT_EQ(records[2], (FactMap{{"ProductName", "only here"}}));
}

TEST_F(RegistryFixes, A32BitProcessOn64BitWindowsReadsUninstallInItsOwnView) {
  // The fix tree comes from the 64-bit view, its Uninstall namesake from the 32-bit one.
  const auto wowKey = [](const std::string& path, const std::string& values) {
    return "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\" + path + "]\r\n" + values +
           "\r\n";
  };
  json description = kNoQueriedFixes;
  description["system"] = {{"wow64", true}};
  RegistryMachine machine(
      update("KB1", described("Native fix")) + uninstall("KB1", "\"DisplayVersion\"=\"64\"") +
          wowKey("Updates\\KB1", described("Wow fix")) +
          wowKey("Windows\\CurrentVersion\\Uninstall\\KB1", "\"DisplayVersion\"=\"32\""),
      description);
  EXPECT_EQ(WindowsFixInfo().getInfo(),
            (FactList{{{"ProductName", "Native fix"}, {"ProductVersion", "32"}}}));
}

TEST_F(RegistryFixes, InstancesTakeTheMachineAsTheirSystem) {
  auto ns = makeSchemaNamespace();
  json description = kNoQueriedFixes;
  description["computerName"] = "WKS-7";
  RegistryMachine machine(
      update("KB1", described("Fix one") + "\"InstalledDate\"=\"20090106\"\r\n") +
          update("KB2", described("Fix two") + "\"DisplayVersion\"=\"2\"\r\n"),
      description);
  EXPECT_EQ(SystemInformation(ns).collectClass(ns->GetClass("QELTO_InstalledFix", {})), 2);
  const auto& instances = ns->GetInstances();
  EXPECT_EQ(instances[1]->GetReference({}).ToString(),
            "QELTO_InstalledFix.CollectionID=\"\",ProductName=\"Fix two\",ProductVersion=\"2\","
            "SystemID=\"WKS-7\"");
  EXPECT_EQ(
      static_cast<std::string>(instances[0]->GetProperty("ProductInstallDate", {})->GetValue({})),
      "20090106000000.000000+000");
}

}  // namespace
}  // namespace installedapps_col
