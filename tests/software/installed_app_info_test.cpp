#include "software/installed_app_info.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/frame/plugin_test_support.h"
#include "tests/vrxcore/test_schema.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Lines = std::vector<std::pair<int, std::string>>;
using Names = std::vector<std::string>;

const std::string kUninstall =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const std::string kWow64 =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const std::string kInstaller = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\Installer\\Products\\";
const std::string kHotfix =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\HotFix\\";

std::string product(const std::string& place, const std::string& subKey,
                    const std::string& values) {
  return place + subKey + "]\r\n" + values + "\r\n";
}

class Applications : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }

  // The names of the records of the enumeration on a machine with `reg`.
  Names enumerate(const std::string& reg) {
    RegistryMachine machine(reg);
    InstalledAppInfo collector(ns->GetClass("QELTO_InstalledApplication", {}));
    Names names;
    for (const FactMap& record : collector.getInfo()) names.push_back(record.at("ProductName"));
    return names;
  }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(Applications, ThreePlacesInOrderFirstNameWins) {
  const Names names = enumerate(
      product(kUninstall, "b", "\"DisplayName\"=\"Editor\"\r\n\"DisplayVersion\"=\"1.0\"") +
      product(kUninstall, "A", "\"DisplayName\"=\"Viewer\"") +
      product(kUninstall, "c", "\"DisplayName\"=\"Editor\"\r\n\"DisplayVersion\"=\"2.0\"") +
      product(kUninstall, "d", "\"Publisher\"=\"nameless\"") +
      product(kUninstall, "e", "\"DisplayName\"=\"\"") +
      product(kWow64, "a", "\"DisplayName\"=\"Viewer\"\r\n\"DisplayVersion\"=\"9\"") +
      product(kWow64, "b", "\"DisplayName\"=\"viewer\"") +
      product(kWow64, "c", "\"DisplayName\"=\"Viewer \"") +
      product(kInstaller, "0F", "\"ProductName\"=\"Runtime\"") +
      product(kInstaller, "1F", "\"ProductName\"=\"Editor\"") +
      product(kInstaller, "2F", "\"DisplayName\"=\"Only a display name\""));
  // Sub-keys come sorted by name without regard to case.
  EXPECT_EQ(names, (Names{"Viewer", "Editor", "viewer", "Viewer ", "Runtime"}));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(Applications, MissingPlacesAreReportedOnceEach) {
  EXPECT_EQ(enumerate(product(kUninstall, "a", "\"DisplayName\"=\"Editor\"")), Names{"Editor"});
  const std::string missing =
      "InstalledAppInfo::getInfo - Unable to enumerate the sub-keys of the desired key.";
  EXPECT_EQ(log.lines(), (Lines{{3, missing}, {3, missing}}));
  log.clear();
  EXPECT_EQ(enumerate(""), Names{});
  EXPECT_EQ(log.lines(), (Lines{{3, missing},
                                {3, missing},
                                {3, missing},
                                {3,
                                 "InstalledAppInfo::getInfo - Unable to build a list of installed "
                                 "applications."}}));
}

TEST_F(Applications, FixesAreFilteredByTheirExactForms) {
  const std::string fixes = product(kHotfix, "KB123456", "") + product(kHotfix, "QFE", "") +
                            product(kHotfix, "998877", "");
  std::string apps;
  const Names candidates = {
      "Security Hotfix 1", "Security hotfix 2", "Update (KB123456)",     "Update KB 123456",
      "Update kb123456",   "Update KB  123456", "Patch QFE 7",           "Patch QF E",
      "Build 998877",      "Build 99887",       "Update KB 123456 again"};
  for (size_t i = 0; i < candidates.size(); ++i)
    apps += product(kUninstall, "k" + std::to_string(10 + i),
                    "\"DisplayName\"=\"" + candidates[i] + "\"");
  // A fix met first is remembered, so its name later is a duplicate too.
  apps += product(kWow64, "x", "\"DisplayName\"=\"Update (KB123456)\"");
  EXPECT_EQ(enumerate(fixes + apps), (Names{"Security hotfix 2", "Update kb123456",
                                            "Update KB  123456", "Patch QF E", "Build 99887"}));
}

TEST_F(Applications, A32BitProcessOn64BitWindowsReadsUninstallInItsOwnView) {
  // Both views hold every place: the Uninstall keys come from the 32-bit
  // view, so both read the WOW6432Node key; installer products from the 64-bit one.
  const std::string wowInstaller =
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Classes\\Installer\\Products\\";
  RegistryMachine machine(product(kUninstall, "a", "\"DisplayName\"=\"Native tool\"") +
                              product(kWow64, "a", "\"DisplayName\"=\"Wow tool\"") +
                              product(kInstaller, "1", "\"ProductName\"=\"Native runtime\"") +
                              product(wowInstaller, "1", "\"ProductName\"=\"Wow runtime\""),
                          {{"system", {{"wow64", true}}}});
  Names names;
  for (const FactMap& record :
       InstalledAppInfo(ns->GetClass("QELTO_InstalledApplication", {})).getInfo())
    names.push_back(record.at("ProductName"));
  EXPECT_EQ(names, (Names{"Wow tool", "Native runtime"}));
}

TEST_F(Applications, InstallerProductsTakeNameAndPackedVersion) {
  RegistryMachine machine(
      product(kUninstall, "{A}",
              "\"DisplayName\"=\"Native\"\r\n\"VersionMajor\"=dword:00000003\r\n"
              "\"VersionMinor\"=dword:0000000c\r\n\"DisplayVersion\"=\"\"") +
      product(kInstaller, "1", "\"ProductName\"=\"Runtime\"\r\n\"Version\"=dword:0a000000") +
      product(kInstaller, "2", "\"ProductName\"=\"Tools\"\r\n\"Version\"=dword:0c0a0fa0") +
      product(kInstaller, "3", "\"ProductName\"=\"Textual\"\r\n\"Version\"=\"1.5\"") +
      product(kInstaller, "4", "\"ProductName\"=\"Unversioned\"") +
      product(kInstaller, "5", "\"ProductName\"=\"Native\"\r\n\"Version\"=dword:01000000"));
  InstalledAppInfo collector(ns->GetClass("QELTO_InstalledApplication", {}));
  const FactList records = collector.getInfo();
  ASSERT_EQ(records.size(), 5u);
  EXPECT_EQ(records[0], (FactMap{{"ProductName", "Native"}, {"ProductVersion", "3.12"}}));
  EXPECT_EQ(records[1], (FactMap{{"ProductName", "Runtime"},
                                 {"ProductVersion", "10.0.0"},
                                 {"ProductIdentifyingNumber", "167772160"}}));
  EXPECT_EQ(records[2].at("ProductVersion"), "12.10.4000");
  EXPECT_EQ(records[2].at("ProductIdentifyingNumber"), "201985952");
  EXPECT_EQ(records[3].at("ProductVersion"), "0.0.1");
  EXPECT_EQ(records[4], (FactMap{{"ProductName", "Unversioned"}}));
}

TEST_F(Applications, InstancesGetTheFixedKeysUnlessTheRegistryHasThem) {
  RegistryMachine machine(
      product(kUninstall, "a",
              "\"DisplayName\"=\"Editor\"\r\n\"DisplayVersion\"=\"2.1\"\r\n"
              "\"InstallDate\"=\"20190131\"\r\n\"Publisher\"=\"Contoso\"\r\n"
              "\"Version\"=dword:02010000") +
          product(kUninstall, "b", "\"DisplayName\"=\"Bare\"\r\n\"InstallDate\"=\"N/A\"") +
          product(kUninstall, "c", "\"DisplayName\"=\"Tagged\"\r\n\"SystemID\"=\"OTHER\""),
      {{"computerName", "WKS-7"}});
  InstalledAppInfo collector(ns->GetClass("QELTO_InstalledApplication", {}));
  EXPECT_EQ(collector.getCIMInstances(), 3);
  const auto& instances = ns->GetInstances();
  EXPECT_EQ(instances[0]->GetReference({}).ToString(),
            "QELTO_InstalledApplication.CollectionID=\"\",ProductName=\"Editor\","
            "ProductVersion=\"2.1\",SystemID=\"WKS-7\"");
  EXPECT_EQ(
      static_cast<std::string>(instances[0]->GetProperty("ProductInstallDate", {})->GetValue({})),
      "20190131000000.000000+000");
  EXPECT_EQ(static_cast<std::string>(
                instances[0]->GetProperty("ProductIdentifyingNumber", {})->GetValue({})),
            "33619968");
  EXPECT_TRUE(instances[1]->GetProperty("ProductInstallDate", {})->GetValue({}).IsNull());
  EXPECT_EQ(propertyValues(*ns, "ProductVersion"), (Names{"2.1", "", ""}));
  EXPECT_EQ(propertyValues(*ns, "SystemID"), (Names{"WKS-7", "WKS-7", "OTHER"}));
  EXPECT_EQ(propertyValues(*ns, "CollectionID"), (Names{"", "", ""}));
  EXPECT_FALSE(instances[1]->GetProperty("CollectionID", {})->GetValue({}).IsNull());
  const std::pair<int, std::string> fixUp = {
      3, "Fixing up instance ...QELTO_InstalledApplication with propertyProductVersion"};
  EXPECT_EQ(std::count(log.lines().begin(), log.lines().end(), fixUp), 2);
}

TEST_F(Applications, ARecordThatFailsIsSkippedWithItsCode) {
  // A schema where the number is a key: records without one cannot commit.
  auto strict = TRepositoryNamespace::Create("root/strict");
  LoadMof(*strict, mof::parseMof(std::string(kTestQualifiers) + R"(
class QELTO_InstalledApplication {
  [Key] uint32 ProductIdentifyingNumber; [Key] string ProductName; string ProductVersion;
  string CollectionID; string SystemID; datetime ProductInstallDate; string ProductVendor; };)",
                                 "strict.mof"));
  RegistryMachine machine(
      product(kUninstall, "1", "\"DisplayName\"=\"A\"\r\n\"Version\"=dword:00000001") +
      product(kUninstall, "2", "\"DisplayName\"=\"B\"") +
      product(kUninstall, "3", "\"DisplayName\"=\"C\"\r\n\"Version\"=dword:00000003"));
  InstalledAppInfo collector(strict->GetClass("QELTO_InstalledApplication", {}));
  EXPECT_EQ(collector.getCIMInstances(), 2);
  EXPECT_EQ(propertyValues(*strict, "ProductName"), (Names{"A", "C"}));
  EXPECT_EQ(log.lines().back(),
            (std::pair<int, std::string>{3,
                                         "InstalledAppInfo::getCIMInstances Encountered an error "
                                         "generating CIM instances. Error Code: 12"}));
}

}  // namespace
}  // namespace installedapps_col
