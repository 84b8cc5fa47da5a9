#include <gtest/gtest.h>

#include "plugin/system_information.h"
#include "tests/components/component_test_files.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Names = std::vector<std::string>;
using Lines = std::vector<std::pair<int, std::string>>;

const char* const kSysoc = R"([Version]
Signature="$Windows NT$"

[Components]
NtComponents=ntoc.dll,NtOcSetupProc,,4
Base=ocgen.dll,OcEntry,base.inf,,7
Wbem=wbem.dll,OcEntry,wbemoc.inf,hide,7
Gone=gone.dll,OcEntry,gone.inf,,7
Quiet=ocgen.dll,OcEntry,quiet.inf,,7
Net=netoc.dll,NetOcSetupProc,netoc.inf,,7
Zone=zoneoc.dll,ZoneSetupProc,zone.inf,,7
)";

const char* const kBaseInf = R"([Version]
Signature="$Windows NT$"

[Optional Components]
AccessUtil
calc
paint

[AccessUtil]
OptionDesc=%AccessUtil_DESC%
Tip=%AccessUtil_TIP%

[calc]
OptionDesc=%calc_DESC%
Tip=%calc_TIP%
Parent=AccessUtil

[paint]
OptionDesc=Paint
Parent=accessutil

[Strings]
AccessUtil_DESC="Accessories and Utilities"
AccessUtil_TIP="Includes Windows Accessories."
calc_DESC="Calculator"
calc_TIP="Performs basic arithmetic tasks."
)";

// Another family's component under a parent of base.inf.
const char* const kWbemInf = R"([Version]
Signature="$Windows NT$"

[Optional Components]
wbemmsi

[wbemmsi]
OptionDesc="WMI Windows Installer Provider"
Parent=ACCESSUTIL
)";

const char* const kQuietInf = R"([Version]
Signature="$Windows NT$"

[DefaultInstall]
AddReg=Quiet.AddReg
)";

// The same component twice: the second instance has the first's keys.
const char* const kNetInf = R"([version]
signature="$Windows NT$"

[optional components]
snmp
snmp
)";

const char* const kZoneInf = R"([Version]
Signature="$Chicago$"

[Optional Components]
zonegames

[zonegames]
OptionDesc="Internet Games"
Parent=Games
)";

const char* const kBaseFamilyOnly = R"([Version]
Signature="$Windows NT$"

[Components]
Base=ocgen.dll,OcEntry,base.inf,,7
)";

const char* const kOcManager =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\Oc Manager\\"
    "Subcomponents]\r\n"
    "\"calc\"=dword:00000001\r\n"
    "\"paint\"=dword:00000000\r\n"
    "\"accessutil\"=\"abc\"\r\n"
    "\"wbemmsi\"=dword:ffffffff\r\n"
    "\"zonegames\"=dword:00000002\r\n";

nlohmann::json windowsXp() {
  return {{"environment", {{"Path", "C:\\WINDOWS\\system32;C:\\WINDOWS"}}},
          {"system",
           {{"windowsDirectory", "C:\\WINDOWS"}, {"systemDirectory", "C:\\WINDOWS\\system32"}}}};
}

std::map<std::string, std::string> setupFiles() {
  return {{"drive_c/WINDOWS/inf/sysoc.inf", infText(kSysoc)},
          {"drive_c/WINDOWS/inf/base.inf", infText(kBaseInf)},
          {"drive_c/WINDOWS/inf/wbemoc.inf", infText(kWbemInf)},
          {"drive_c/WINDOWS/inf/quiet.inf", infText(kQuietInf)},
          {"drive_c/WINDOWS/inf/netoc.inf", infText(kNetInf)},
          {"drive_c/WINDOWS/inf/zone.inf", infText(kZoneInf)},
          {"drive_c/WINDOWS/system32/setup/ocgen.dll", versionedFile("build_comment.dll")},
          {"drive_c/WINDOWS/system32/setup/wbem.dll", versionedFile("plain.dll")},
          // Found along PATH only.
          {"drive_c/WINDOWS/system32/netoc.dll", versionedFile("plain.dll")},
          {"drive_c/WINDOWS/system32/ntbackup.exe", versionedFile("ntbackup.exe")}};
}

class ComponentEnumeration : public ::testing::Test {
 protected:
  void SetUp() override {
    registeredPlugin();
    if (!haveVersionedFiles()) GTEST_SKIP() << "the mingw-w64 tools made no version resources";
  }
  int collect(const std::string& className) {
    return SystemInformation(ns).collectClass(ns->GetClass(className, {}));
  }
  Names values(const std::string& property) { return propertyValues(*ns, property); }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(ComponentEnumeration, EachComponentOfEachFamilyBecomesAnInstance) {
  OsMachine machine(windowsXp(), kOcManager, setupFiles());
  EXPECT_EQ(collect("QELTO_OSComponent"), 7);
  EXPECT_EQ(values("Name"),
            (Names{"AccessUtil", "calc", "paint", "wbemmsi", "snmp", "zonegames", "ntbackup"}));
  EXPECT_EQ(values("ProductName"),
            (Names{"Accessories and Utilities", "Calculator", "Paint",
                   "WMI Windows Installer Provider", "", "Internet Games", "Backup Utility"}));
  EXPECT_EQ(values("Tip"), (Names{"Includes Windows Accessories.",
                                  "Performs basic arithmetic tasks.", "", "", "", "", ""}));
  EXPECT_EQ(values("Parent"),
            (Names{"", "AccessUtil", "accessutil", "ACCESSUTIL", "", "Games", ""}));
  const Names versions = {"5.1.2600.5512",  "5.1.2600.5512",  "5.1.2600.5512",
                          "6.0.6001.18000", "6.0.6001.18000", "",
                          "5.1.2600.5512"};
  EXPECT_EQ(values("Version"), versions);
  EXPECT_EQ(values("IdentifyingNumber"), versions);
  EXPECT_EQ(values("DLLName"), (Names{"ocgen.dll", "ocgen.dll", "ocgen.dll", "wbem.dll",
                                      "netoc.dll", "zoneoc.dll", "ntbackup.exe"}));
  EXPECT_EQ(values("INFName"),
            (Names{"C:\\WINDOWS\\inf\\base.inf", "C:\\WINDOWS\\inf\\base.inf",
                   "C:\\WINDOWS\\inf\\base.inf", "C:\\WINDOWS\\inf\\wbemoc.inf",
                   "C:\\WINDOWS\\inf\\netoc.inf", "C:\\WINDOWS\\inf\\zone.inf", ""}));
  EXPECT_EQ(values("ComponentInstalled"), (Names{"1", "2", "1", "0", "0", "3", "2"}));
  EXPECT_EQ(values("Hidden"), (Names{"false", "false", "false", "true", "false", "false", ""}));
  EXPECT_EQ(log.lines(),
            (Lines{{3,
                    "OsComponentInfo::getInfo C:\\WINDOWS\\inf\\gone.inf cannot be parsed "
                    "because file does not exist. "},
                   {3,
                    "OsComponentInfo::findDllInSysPath zoneoc.dll cannot be found in the "
                    "directories of the system PATH variable to obtain the version."},
                   {3, "bpName = ntbackup.exe. version = 5.1.2600.5512"},
                   {3,
                    "OSComponentInfo::getCIMInstances Encountered an error generating CIM "
                    "instances. Error Code: 11"},
                   {3, "Fixing up instance ...QELTO_OSComponent with propertyINFName"}}));
}

TEST_F(ComponentEnumeration, A32BitProcessLooksBehindTheRedirectionOfSystem32) {
  nlohmann::json description = windowsXp();
  description["system"]["wow64"] = true;
  OsMachine machine(
      description, "",
      {{"drive_c/WINDOWS/inf/sysoc.inf", infText(kBaseFamilyOnly)},
       {"drive_c/WINDOWS/inf/base.inf", infText(kBaseInf)},
       {"drive_c/WINDOWS/system32/setup/ocgen.dll", versionedFile("build_comment.dll")},
       {"drive_c/WINDOWS/system32/ntbackup.exe", versionedFile("ntbackup.exe")}});
  EXPECT_EQ(collect("QELTO_OSComponent"), 4);
  EXPECT_EQ(values("Version"),
            (Names{"5.1.2600.5512", "5.1.2600.5512", "5.1.2600.5512", "5.1.2600.5512"}));
  // The first walk of PATH sees SysWOW64 where it names system32.
  EXPECT_EQ(log.lines(),
            (Lines{{3,
                    "OsComponentInfo::findDllInSysPath ntbackup.exe cannot be found in the "
                    "directories of the system PATH variable to obtain the version."},
                   {3, "bpName = ntbackup.exe. version = 5.1.2600.5512"},
                   {3, "Fixing up instance ...QELTO_OSComponent with propertyINFName"}}));
}

TEST_F(ComponentEnumeration, WithoutKernel32AComponentsDllIsNotLookedForAlongPath) {
  nlohmann::json description = windowsXp();
  description["missing"] = {"kernel32.dll"};
  OsMachine machine(description, kOcManager, setupFiles());
  collect("QELTO_OSComponent");
  // netoc.dll lies along PATH only; the backup program's first walk needs no kernel32.
  EXPECT_EQ(values("Version"), (Names{"5.1.2600.5512", "5.1.2600.5512", "5.1.2600.5512",
                                      "6.0.6001.18000", "", "", "5.1.2600.5512"}));
  for (const auto& line : log.lines())
    EXPECT_EQ(line.second.find("findDllInSysPath"), std::string::npos) << line.second;
}

TEST_F(ComponentEnumeration, MissingSetupFilesLeaveOnlyWhatCanStillBeFound) {
  {
    // No sysoc.inf and no backup program: nothing at all.
    OsMachine machine(windowsXp());
    EXPECT_EQ(collect("QELTO_OSComponent"), 0);
    EXPECT_TRUE(ns->GetInstances().empty());
    EXPECT_EQ(log.lines(),
              (Lines{{3,
                      "OsComponentInfo::getINFFileList Sysoc.inf File has no Component "
                      "sections"},
                     {3,
                      "OsComponentInfo::findDllInSysPath ntbackup.exe cannot be found in the "
                      "directories of the system PATH variable to obtain the version."}}));
  }
  log.clear();
  {
    // Without the Windows directory the INF paths start at the backslash.
    nlohmann::json description = windowsXp();
    description["fail"] = {{"GetSystemWindowsDirectoryA", 0}};
    std::map<std::string, std::string> files = {
        {"drive_c/WINDOWS/inf/sysoc.inf", infText(kBaseFamilyOnly)},
        {"drive_c/WINDOWS/inf/base.inf", infText(kBaseInf)}};
    OsMachine machine(description, "", files);
    EXPECT_EQ(collect("QELTO_OSComponent"), 0);
    ASSERT_FALSE(log.lines().empty());
    EXPECT_EQ(log.lines()[0].second,
              "OsComponentInfo::getInfo \\base.inf cannot be parsed because file does not exist. ");
  }
}

// INF texts are read into 256 bytes: 255 characters come through whole; a longer component name
// or tip never writes past the buffer and never shows longer than it. (A section name beyond 255
// characters makes the whole file unreadable, as SetupAPI has it.)
TEST_F(ComponentEnumeration, InfTextsBeyondTheirBufferStayWithinIt) {
  const std::string name(255, 'n'), longName = "m" + std::string(300, 'm');
  const std::string desc(255, 'd'), longTip(400, 't');
  const std::string family = "[Version]\nSignature=\"$Windows NT$\"\n\n[Optional Components]\n" +
                             name + "\n" + longName + "\n\n[" + name + "]\nOptionDesc=\"" + desc +
                             "\"\nTip=\"" + longTip + "\"\n";
  OsMachine machine(
      windowsXp(), "",
      {{"drive_c/WINDOWS/inf/sysoc.inf", infText(kBaseFamilyOnly)},
       {"drive_c/WINDOWS/inf/base.inf", infText(family)},
       {"drive_c/WINDOWS/system32/setup/ocgen.dll", versionedFile("build_comment.dll")}});
  collect("QELTO_OSComponent");
  const Names names = values("Name");
  ASSERT_FALSE(names.empty());
  EXPECT_EQ(names.front(), name);
  EXPECT_EQ(values("ProductName").front(), desc);
  for (const char* property : {"Name", "ProductName", "Tip", "Parent"})
    for (const std::string& text : values(property)) EXPECT_LT(text.size(), 256u) << property;
}

}  // namespace
}  // namespace installedapps_col
