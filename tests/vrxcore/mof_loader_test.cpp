#include <gtest/gtest.h>

#include "tests/vrxcore/test_schema.h"

namespace NZARVEK20 {
namespace {

// The message of loading `classes` after the test qualifiers, or "".
std::string loadError(const std::string& classes) {
  auto ns = TRepositoryNamespace::Create("root/test");
  try {
    LoadMof(*ns, mof::parseMof(std::string(kTestQualifiers) + kTestClasses + classes, "t.mof"));
  } catch (const mof::ParseError& e) {
    return e.what();
  }
  return "";
}

TEST(MofLoader, RefusesWhatTheRepositoryWouldBreakOn) {
  // The test schema ends on line 28; the declarations below are on line 29,
  // located at the name they are about.
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"class A : Missing { };", "t.mof:29:7: unknown superclass Missing"},
      {"class T_System { };", "t.mof:29:7: class T_System is declared twice"},
      {"class A : T_Setting { [Key] string Other; };",
       "t.mof:29:36: Invalid parameter: subclass A cannot add the key property Other"},
      {"class A : T_Setting { string SettingID; };",
       "t.mof:29:30: Invalid parameter: property SettingID of class A cannot change its Key "
       "qualifier"},
      {"[Association(false)] class A : T_SystemSettings { };",
       "t.mof:29:28: Invalid parameter: class A cannot override the inherited qualifier "
       "Association"},
      {"class A { [Unknown] string B; };", "t.mof:29:12: undeclared qualifier Unknown"},
      {"class A { [Description] string B; };", "t.mof:29:12: qualifier Description needs a value"},
      {"class A { uint8 B = 256; };",
       "t.mof:29:21: The value does not convert to the property's type: out of range for uint8"},
      {"class A { uint8 B = \"1\"; };", "t.mof:29:21: expected a uint8 value"},
      {"class A { string B[] = \"x\"; };", "t.mof:29:24: expected an array value"},
      {"class A { datetime B = \"2010\"; };", "t.mof:29:24: Invalid date-time"},
      {"class A { Nowhere REF B; };", "t.mof:29:23: unknown class Nowhere of reference B"},
      {"instance of T_Setting { SettingID = \"x\"; };",
       "t.mof:29:1: An abstract class cannot have instances"},
      {"instance of T_UserSetting { Nope = 1; };",
       "t.mof:29:36: class T_UserSetting has no property Nope"},
      {"instance of T_System { Name = \"n\"; };", "t.mof:29:1: A key property"},
      {"instance of T_UserSetting { SettingID = $none; };", "t.mof:29:41: unknown alias $none"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(loadError(c.first).rfind(c.second, 0), 0u)
        << c.first << "\n  gave: " << loadError(c.first);
}

TEST(MofLoader, LoadsInstancesWithDefaultsArraysAndAliases) {
  auto ns = makeTestNamespace();
  LoadMof(*ns, mof::parseMof(R"(
instance of T_System as $sys {
  CreationClassName = "T_System"; Name = "WKS"; Number = 0x10; Flag = true; };
instance of T_SystemSetting as $path {
  SettingID = "Path"; Weight = 3; Tags = {"a", "b"}; Changed = "20261122101530.000000+060"; };
instance of T_SystemSettings { Element = $sys; Setting = $path; };
)",
                             "i.mof"));
  const auto& instances = ns->GetInstances();
  ASSERT_EQ(instances.size(), 3u);
  EXPECT_EQ(instances[0]->GetProperty("Number", {})->GetValue({}), TCIMValue(16u));
  EXPECT_EQ(static_cast<std::string>(instances[1]->GetProperty("Tags", {})->GetValue({})), "a,b");
  EXPECT_EQ(instances[1]->GetProperty("SettingValue", {})->GetValue({}), TCIMValue("unset"));
  EXPECT_EQ(instances[2]->GetProperty("Setting", {})->GetValue({}).GetReference(),
            instances[1]->GetReference({}));
}

TEST(MofLoader, TheShippedSchemaLoads) {
  auto ns = TRepositoryNamespace::Create("root/qelto");
  LoadMofFile(*ns, VRX_SCHEMA_FILE);
  for (const char* name :
       {"QELTO_ComputerSystem", "QELTO_InstalledApplication", "QELTO_InstalledFix",
        "QELTO_OperatingSystem", "QELTO_TimeZone", "QELTO_PageFile", "QELTO_EnvironmentVariable",
        "QELTO_SystemEnvironmentVariable", "QELTO_UserEnvironmentVariable",
        "QELTO_OSEnvironmentVariable", "QELTO_Account", "QELTO_AccountOnSystem",
        "QELTO_CurrentAccountOnSystem", "QELTO_OSComponent", "QELTO_OSBaseComponent",
        "QELTO_OSSubComponent"})
    EXPECT_TRUE(ns->FindClass(name)) << name;
  EXPECT_TRUE(ns->GetClass("QELTO_EnvironmentVariable", {})->IsAbstract({}));
  EXPECT_TRUE(ns->GetClass("QELTO_OSSubComponent", {})->IsAssociation({}));
}

}  // namespace
}  // namespace NZARVEK20
