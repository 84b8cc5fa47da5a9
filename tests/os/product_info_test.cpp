#include <gtest/gtest.h>

#include "os/os_product_info.h"
#include "tests/os/os_test_machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Lines = std::vector<std::pair<int, std::string>>;

const std::string kCurrentVersionKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
const std::string kR2Marker = machineKey("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\R2Setup",
                                         stringValue("R2BuildNumber", "2214"));
const std::string kMiniNT = machineKey("SYSTEM\\CurrentControlSet\\Control\\MiniNT", "");

std::string currentVersion(const std::string& version, const std::string& productName,
                           const std::string& buildLabel = "") {
  return machineKey(kCurrentVersionKey, stringValue("CurrentVersion", version) +
                                            stringValue("ProductName", productName) +
                                            stringValue("BuildLabEx", buildLabel));
}

struct Edition {
  const char* name;
  int major, minor, productType, suiteMask, productInfo;
  int architecture;
  bool wow64;
  std::string registry;
  unsigned short osType, osSubType;
};

const Edition kEditions[] = {
    {"NT 4.0 workstation", 4, 0, 1, 0, 0, 0, false, "", 18, 2},
    {"2000 Advanced Server", 5, 0, 3, 0x2, 0, 0, false, "", 58, 10},
    {"2000 Server", 5, 0, 3, 0x100, 0, 0, false, "", 58, 11},
    {"XP Professional", 5, 1, 1, 0x100, 0, 0, false, "", 67, 4},
    {"XP Home", 5, 1, 1, 0x200, 0, 0, false, "", 67, 3},
    {"XP x64", 5, 2, 1, 0, 0, 9, false, kR2Marker, 71, 4},
    {"2003 Web", 5, 2, 3, 0x400, 0, 0, false, "", 69, 7},
    {"2003 R2 Standard", 5, 2, 3, 0, 0, 0, false, kR2Marker, 72, 8},
    {"2003 x64 Datacenter", 5, 2, 3, 0x80 | 0x2, 0, 9, false, "", 70, 5},
    {"2003 R2 x64 Enterprise", 5, 2, 3, 0x2, 0, 9, false, kR2Marker, 73, 6},
    {"2003 R2 Enterprise under WOW64", 5, 2, 2, 0x2, 0, 0, true, kR2Marker, 73, 6},
    {"Vista Business", 6, 0, 1, 0, 0, 0, false, "", 74, 12},
    {"Vista Home x64", 6, 0, 1, 0x200, 0, 9, false, "", 75, 3},
    {"2008 Standard", 6, 0, 3, 0, 0, 0, false, "", 76, 8},
    {"2008 x64 HPC", 6, 0, 3, 0, 18, 9, false, "", 77, 19},
    {"MiniNT on 6.0", 6, 0, 3, 0x80, 0, 0, true, kMiniNT, 79, 5},
    {"MiniNT on 6.0 x64", 6, 0, 1, 0, 0, 9, false, kMiniNT, 80, 4},
    {"7 Professional", 6, 1, 1, 0x100, 48, 9, false, "", 83, 17},
    {"7 Ultimate", 6, 1, 1, 0, 1, 0, false, "", 83, 16},
    {"7 Starter", 6, 1, 1, 0, 11, 0, false, "", 83, 4},
    {"2008 R2 SBS", 6, 1, 3, 0x1, 0, 9, false, "", 84, 13},
    {"2008 R2 Enterprise", 6, 1, 2, 0x2 | 0x1, 0, 9, false, "", 82, 6},
    {"2008 R2 SBS restricted", 6, 1, 3, 0x20, 0, 9, false, "", 82, 0},
    {"PE of 7 x64", 6, 1, 1, 0, 0, 9, false,
     currentVersion("6.1", "Windows 7 Preinstallation Environment", "7600.winmain_win7rtm"), 80, 4},
    {"PE of 7", 6, 1, 1, 0, 0, 0, false,
     currentVersion("6.1", "Windows Preinstallation Environment"), 79, 4},
    {"PE named otherwise", 6, 1, 1, 0, 0, 0, false,
     currentVersion("6.1", "Windows PE", "7600.winmain_win7rtm"), 83, 4},
    {"8", 6, 2, 1, 0, 48, 9, false, currentVersion("6.2", "Windows 8 Pro"), 85, 4},
    {"2012", 6, 2, 3, 0, 0, 9, false, currentVersion("6.2", "Windows Server 2012 Standard"), 87, 8},
    {"2012 R2", 6, 2, 3, 0, 0, 9, false, currentVersion("6.3", "Windows Server 2012 R2 Standard"),
     86, 8},
    {"2016", 6, 2, 3, 0x80, 0, 9, false, currentVersion("6.3", "Windows Server 2016 Datacenter"),
     88, 5},
    {"2012 R2 32-bit", 6, 2, 3, 0, 0, 0, false,
     currentVersion("6.3", "Windows Server 2012 R2 Standard"), 0, 8},
    {"10", 10, 0, 1, 0, 48, 9, false, "", 0, 4},
};

nlohmann::json describe(const Edition& edition) {
  nlohmann::json machine = windows7();
  machine["version"] = {{"major", edition.major},
                        {"minor", edition.minor},
                        {"platformId", 2},
                        {"csdVersion", ""},
                        {"suiteMask", edition.suiteMask},
                        {"productType", edition.productType},
                        {"productInfo", edition.productInfo}};
  machine["system"] = {{"processorArchitecture", edition.architecture}, {"wow64", edition.wow64}};
  return machine;
}

class ProductInfo : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  boost::shared_ptr<ICIMClass> osClass = ns->GetClass("QELTO_OperatingSystem", {});
  LogCapture log;
};

TEST_F(ProductInfo, VersionsAndEditionsGiveTheirTypeAndSubType) {
  for (const Edition& edition : kEditions) {
    SCOPED_TRACE(edition.name);
    OsMachine machine(describe(edition), edition.registry);
    const FactMap facts = OSProductInfo(osClass).getVersionFacts();
    EXPECT_EQ(facts.at("OSType"), std::to_string(edition.osType));
    EXPECT_EQ(facts.at("OSSubType"), std::to_string(edition.osSubType));
  }
}

TEST_F(ProductInfo, Version60LogsWhatItDetected) {
  nlohmann::json server = describe(kEditions[13]);
  {
    OsMachine machine(server, kMiniNT);
    OSProductInfo(osClass).getVersionFacts();
  }
  EXPECT_EQ(linesWith(log, "detected."),
            (Lines{{3, "Windows Vista detected."}, {4, "Windows Longhorn detected."}}));
  EXPECT_EQ(linesWith(log, "MiniNT"),
            (Lines{{3, "MiniNT key found in registry, consider it as Windows PE."}}));
  log.clear();
  OsMachine workstation(describe(kEditions[11]));
  OSProductInfo(osClass).getVersionFacts();
  EXPECT_EQ(linesWith(log, "detected."), (Lines{{3, "Windows Vista detected."}}));
}

TEST_F(ProductInfo, EditionNeedsTheNtPlatformAndAKnownProductType) {
  nlohmann::json machine = windows7();
  machine["version"]["platformId"] = 1;
  {
    OsMachine windows9x(machine);
    EXPECT_EQ(OSProductInfo(osClass).getVersionFacts().at("OSSubType"), "0");
  }
  machine["version"]["platformId"] = 2;
  machine["version"]["productType"] = 4;
  OsMachine unknownType(machine);
  EXPECT_EQ(OSProductInfo(osClass).getVersionFacts().at("OSSubType"), "0");
}

TEST_F(ProductInfo, MissingLookupsCountAsNoAnswer) {
  nlohmann::json machine = describe(kEditions[9]);  // 2003 x64 Enterprise
  machine["system"] = {{"processorArchitecture", 0}, {"wow64", true}};
  machine["missing"] = {"kernel32.dll!IsWow64Process"};
  {
    OsMachine noWow64(machine);
    EXPECT_EQ(OSProductInfo(osClass).getVersionFacts().at("OSType"), "69");
  }
  nlohmann::json seven = windows7();
  seven["missing"] = {"kernel32.dll!GetProductInfo"};
  OsMachine noProductInfo(seven);
  EXPECT_EQ(OSProductInfo(osClass).getVersionFacts().at("OSSubType"), "4");
}

TEST_F(ProductInfo, RegistryFactsAndTheFixLevelBecomeProperties) {
  nlohmann::json machine = windows7();
  machine["timeZone"] = {{"bias", 0}, {"standardName", "UTC"}, {"daylightName", "UTC"}};
  OsMachine seven(machine, machineKey(kCurrentVersionKey,
                                      stringValue("ProductId", "00371-OEM-8992671-00524") +
                                          stringValue("CurrentVersion", "6.1") +
                                          "\"InstallDate\"=dword:4b3d3b00\r\n" +
                                          stringValue("RegisteredOwner", "alice") +
                                          stringValue("CurrentBuildNumber", "7601") +
                                          stringValue("ProductName", "Windows 7 Professional")));
  const PropertyMap values = OSProductInfo(osClass).getProductProperties();
  std::map<std::string, std::string> texts;
  for (const auto& value : values) texts[value.first] = static_cast<std::string>(value.second);
  EXPECT_EQ(texts, (std::map<std::string, std::string>{{"BuildID", "7601"},
                                                       {"FixLevel", "Service Pack 1"},
                                                       {"InstallDate", "20100101000000.000000+000"},
                                                       {"OSSubType", "17"},
                                                       {"OSType", "83"},
                                                       {"ProductID", "00371-OEM-8992671-00524"},
                                                       {"ProductName", "Windows 7 Professional"},
                                                       {"ProductVendor", "Microsoft Corporation"},
                                                       {"RegisteredOwner", "alice"},
                                                       {"Version", "6.1"}}));
  EXPECT_EQ(values.at("OSType").GetType(), CIM_UINT16);
}

TEST_F(ProductInfo, WithoutServicePackTheFixLevelSaysSo) {
  nlohmann::json machine = windows7();
  machine["version"]["csdVersion"] = "";
  OsMachine seven(machine);
  EXPECT_EQ(OSProductInfo(osClass).getVersionFacts().at("FixLevel"), "No service packs installed");
  EXPECT_EQ(linesWith(log, "ix"),
            (Lines{{4, "Size of Fix Level:26"}, {4, "Did not find fix level, adding property"}}));
  EXPECT_EQ(linesWith(log, "Service Pack:"), (Lines{{4, "Service Pack:"}}));
}

TEST_F(ProductInfo, AnUnreadableVersionLeavesTheRegistryFacts) {
  nlohmann::json machine = windows7();
  machine["fail"] = {{"GetVersionExA", 0}};
  OsMachine seven(machine, currentVersion("6.1", "Windows 7 Professional"));
  const PropertyMap values = OSProductInfo(osClass).getProductProperties();
  EXPECT_EQ(values.count("OSType") + values.count("OSSubType") + values.count("FixLevel"), 0u);
  EXPECT_EQ(static_cast<std::string>(values.at("ProductName")), "Windows 7 Professional");
  EXPECT_EQ(static_cast<std::string>(values.at("ProductVendor")), "Microsoft Corporation");
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace installedapps_col
