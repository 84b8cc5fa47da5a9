#include <gtest/gtest.h>

#include "accounts/environment_variable_info.h"
#include "plugin/system_information.h"
#include "tests/frame/plugin_test_support.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Names = std::vector<std::string>;

const char* const kRegistry =
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment]\r\n"
    "\"windir\"=hex(2):25,00,53,00,79,00,73,00,74,00,65,00,6d,00,52,00,6f,00,6f,00,74,00,25,00,"
    "00,00\r\n"
    "\"OS\"=\"Windows_NT\"\r\n"
    "\"Blob\"=hex:01,02\r\n"
    "\"Empty\"=\"\"\r\n"
    "\"NUMBER_OF_PROCESSORS\"=dword:00000008\r\n"
    "\"Odd\"=hex(2):25,00,4e,00,4f,00,50,00,45,00,25,00,00,00\r\n"
    "@=\"default\"\r\n\r\n"
    "[HKEY_CURRENT_USER\\Environment]\r\n"
    "\"TEMP\"=\"C:\\\\Users\\\\alice\\\\Temp\"\r\n"
    "\"Multi\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n";

class EnvironmentVariables : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  int collect(const std::string& className) {
    return SystemInformation(ns).collectClass(ns->GetClass(className, {}));
  }
  void commitOperatingSystem(const std::string& name) {
    auto os = ns->GetClass("QELTO_OperatingSystem", {})->AllocateInstance({});
    for (const char* key : {"CSCreationClassName", "CSName", "CreationClassName"})
      os->SetPropertyValue(key, TCIMValue("x"), {});
    os->SetPropertyValue("Name", TCIMValue(name), {});
    os->Commit({});
  }

  RegistryMachine machine{kRegistry, {{"environment", {{"SystemRoot", "C:\\Windows"}}}}};
  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(EnvironmentVariables, SystemAndUserVariablesComeFromTheirKeys) {
  EXPECT_EQ(collect("QELTO_SystemEnvironmentVariable"), 4);
  EXPECT_EQ(collect("QELTO_UserEnvironmentVariable"), 2);
  EXPECT_EQ(propertyValues(*ns, "SettingID"),
            (Names{"NUMBER_OF_PROCESSORS", "OS", "Odd", "windir", "Multi", "TEMP"}));
  EXPECT_EQ(propertyValues(*ns, "SettingValue"),
            (Names{"8", "Windows_NT", "%NOPE%", "C:\\Windows", "a b", "C:\\Users\\alice\\Temp"}));
  EXPECT_EQ(ns->GetInstances()[5]->GetReference({}).ToString(),
            "QELTO_UserEnvironmentVariable.SettingID=\"TEMP\"");
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(EnvironmentVariables, AnyOtherClassReadsTheUserKey) {
  EnvironmentVariableInfo collector(ns->GetClass("QELTO_EnvironmentVariable", {}));
  // The parent is abstract: each record fails on its own and is logged.
  EXPECT_EQ(collector.getCIMInstances(), 0);
  EXPECT_EQ(log.lines().size(), 2u);
  EXPECT_EQ(log.lines()[0],
            (std::pair<int, std::string>{0, "An abstract class cannot have instances"}));
}

TEST_F(EnvironmentVariables, EachOperatingSystemIsJoinedWithEveryVariable) {
  EXPECT_EQ(collect("QELTO_OSEnvironmentVariable"), 0);
  EXPECT_TRUE(ns->GetInstances().empty());
  collect("QELTO_UserEnvironmentVariable");
  commitOperatingSystem("first");
  commitOperatingSystem("second");
  EXPECT_EQ(collect("QELTO_OSEnvironmentVariable"), 4);
  const auto& instances = ns->GetInstances();
  ASSERT_EQ(instances.size(), 8u);
  EXPECT_EQ(static_cast<std::string>(instances[4]->GetProperty("Element", {})->GetValue({})),
            static_cast<std::string>(instances[2]->GetReference({}).ToString()));
  EXPECT_EQ(static_cast<std::string>(instances[5]->GetProperty("Setting", {})->GetValue({})),
            "QELTO_UserEnvironmentVariable.SettingID=\"TEMP\"");
  EXPECT_EQ(static_cast<std::string>(instances[7]->GetProperty("Element", {})->GetValue({})),
            static_cast<std::string>(instances[3]->GetReference({}).ToString()));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(EnvironmentVariables, ApplicationsDependOnTheExclusionSettingAtEachQuery) {
  const std::string app =
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\x]\r\n"
      "\"DisplayName\"=\"Editor\"\r\n";
  {
    RegistryMachine excluded(app, {{"environment", {{"VRX_EXCLUDEAPPS", "0"}}}});
    EXPECT_EQ(collect("QELTO_InstalledApplication"), 0);
    EXPECT_TRUE(ns->GetInstances().empty());
    EXPECT_TRUE(log.lines().empty());
  }
  RegistryMachine included(app, {{"environment", {{"VRX_EXCLUDEAPPS", ""}}}});
  EXPECT_EQ(collect("QELTO_InstalledApplication"), 1);
}

}  // namespace
}  // namespace installedapps_col
