#include "os/os_info.h"

#include <gtest/gtest.h>

#include "plugin/system_information.h"
#include "tests/os/os_test_machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Names = std::vector<std::string>;

const Names kKeys = {"CSCreationClassName", "CSName", "CreationClassName", "Name"};
const Names kTime = {"LastBootUpTime", "UpTime"};
const Names kMemory = {
    "FreePhysicalMemory",      "FreeSpaceInPagingFiles", "FreeVirtualMemory",     "MemoryLoad",
    "SizeStoredInPagingFiles", "TotalVirtualMemorySize", "TotalVisibleMemorySize"};
const Names kPerformance = {"CommitLimit",       "CommitPeak",    "CommitTotal",  "HandleCount",
                            "KernelNonpaged",    "KernelPaged",   "KernelTotal",  "PageSize",
                            "PhysicalAvailable", "PhysicalTotal", "ProcessCount", "SystemCache",
                            "ThreadCount"};
const Names kVersion = {"FixLevel", "OSSubType", "OSType"};
const Names kRegistry = {"BuildID", "ProductName", "Version"};
const Names kBoot = {"BootConfigurationFileContents", "BootConfigurationFileName"};

const std::string kProduct =
    machineKey("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
               stringValue("CurrentVersion", "6.1") + stringValue("CurrentBuildNumber", "7601") +
                   stringValue("ProductName", "Windows 7 Professional"));

Names sorted(std::vector<Names> groups) {
  Names all = {"ProductVendor"};
  for (const Names& group : groups) all.insert(all.end(), group.begin(), group.end());
  std::sort(all.begin(), all.end());
  return all;
}

class OperatingSystem : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  int collect() {
    return SystemInformation(ns).collectClass(ns->GetClass("QELTO_OperatingSystem", {}));
  }
  // The properties of the one instance that have a value.
  Names setProperties() {
    std::vector<boost::shared_ptr<ICIMProperty>> properties;
    ns->GetInstances().at(0)->EnumerateProperties(TAddToVectorCallback<ICIMProperty>(properties),
                                                  {});
    Names names;
    for (const auto& property : properties)
      if (!property->GetValue({}).IsNull()) names.push_back(property->GetName({}));
    std::sort(names.begin(), names.end());
    return names;
  }
  std::string value(const std::string& property) { return propertyValues(*ns, property).at(0); }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(OperatingSystem, OneInstanceGathersEverySource) {
  OsMachine machine(windows7(), kProduct, {{"drive_c/boot.ini", "[boot loader]\r\n"}});
  EXPECT_EQ(collect(), 1);
  ASSERT_EQ(ns->GetInstances().size(), 1u);
  EXPECT_EQ(setProperties(),
            sorted({kKeys, kTime, kMemory, kPerformance, kVersion, kRegistry, kBoot}));
  EXPECT_EQ(value("CSName"), "WKS-042");
  EXPECT_EQ(value("Name"), "WKS-042");
  EXPECT_EQ(value("CSCreationClassName"), "QELTO_ComputerSystem");
  EXPECT_EQ(value("CreationClassName"), "QELTO_OperatingSystem");
  EXPECT_EQ(value("OSType"), "83");
  EXPECT_EQ(value("UpTime"), "00000000192640.000000:000");
  EXPECT_EQ(value("TotalVisibleMemorySize"), "8388608");
  EXPECT_EQ(value("PageSize"), "4096");
  EXPECT_EQ(value("BootConfigurationFileName"), "C:\\boot.ini");
}

TEST_F(OperatingSystem, TheSystemsNameComesFromTheComputerSystemTheHostCommitted) {
  auto system = ns->GetClass("QELTO_ComputerSystem", {})->AllocateInstance({});
  system->SetPropertyValue("CreationClassName", TCIMValue("QELTO_ComputerSystem"), {});
  system->SetPropertyValue("Name", TCIMValue("HOST-A"), {});
  system->Commit({});
  OsMachine machine(windows7());
  EXPECT_EQ(collect(), 1);
  const auto os = ns->GetInstances().at(1);
  EXPECT_EQ(static_cast<std::string>(os->GetProperty("CSName", {})->GetValue({})), "HOST-A");
  EXPECT_EQ(static_cast<std::string>(os->GetProperty("Name", {})->GetValue({})), "WKS-042");
}

TEST_F(OperatingSystem, EachFailingSourceLeavesTheRestOfTheInstance) {
  struct Failure {
    const char* member;
    nlohmann::json entry;
    Names lost;
  };
  const std::vector<Failure> failures = {
      {"fail", {{"GlobalMemoryStatusEx", 0}}, kMemory},
      {"missing", {"psapi.dll!GetPerformanceInfo"}, kPerformance},
      {"fail", {{"GetVersionExA", 0}}, Names(kVersion.begin(), kVersion.end())},
      {"fail", {{"ExpandEnvironmentStringsA", 0}}, kBoot},
      {"fail", {{"PdhAddCounterA", "0xC0000BB9"}}, {}},
  };
  for (const Failure& failure : failures) {
    SCOPED_TRACE(failure.entry.dump());
    ns = makeSchemaNamespace();
    nlohmann::json description = windows7();
    description[failure.member] = failure.entry;
    OsMachine machine(description, kProduct, {{"drive_c/boot.ini", "[boot loader]\r\n"}});
    EXPECT_EQ(collect(), 1);
    Names expected = sorted({kKeys, kTime, kMemory, kPerformance, kVersion, kRegistry, kBoot});
    for (const std::string& lost : failure.lost)
      expected.erase(std::find(expected.begin(), expected.end(), lost));
    EXPECT_EQ(setProperties(), expected);
  }
}

TEST_F(OperatingSystem, WithEverySourceFailingTheNamesAndTimesRemain) {
  nlohmann::json description = {{"computerName", "BARE"},
                                {"now", "2026-11-22T10:15:30Z"},
                                {"fail", {{"ExpandEnvironmentStringsA", 0}}}};
  OsMachine machine(description);
  EXPECT_EQ(collect(), 1);
  EXPECT_EQ(setProperties(), (Names{"CSCreationClassName", "CSName", "CreationClassName",
                                    "LastBootUpTime", "Name", "ProductVendor", "UpTime"}));
  EXPECT_EQ(value("Name"), "BARE");
}

TEST_F(OperatingSystem, HostErrorsCostTheInstanceAndAreLogged) {
  OsMachine machine(windows7());
  EXPECT_EQ(OSInfo(nullptr).getCIMInstances(), 0);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.lines()[0], (std::pair<int, std::string>{
                                3,
                                "OSInfo::getCIMInstances Encountered an error Encountered an "
                                "error generating CIM instances. Error Code: 7"}));
  OSInfo collector(ns->GetClass("QELTO_OperatingSystem", {}));
  EXPECT_EQ(collector.getCIMInstances(), 1);
  // Nothing is kept between calls: the second instance has the first one's
  // names, which the store refuses.
  log.clear();
  EXPECT_EQ(collector.getCIMInstances(), 0);
  EXPECT_EQ(linesWith(log, "OSInfo::getCIMInstances").size(), 1u);
  EXPECT_EQ(ns->GetInstances().size(), 1u);
}

}  // namespace
}  // namespace installedapps_col
