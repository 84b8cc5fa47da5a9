#include <gtest/gtest.h>

#include "frame/platform.h"
#include "plugin/system_information.h"
#include "software/windows_fix_info.h"
#include "tests/frame/plugin_test_support.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using json = nlohmann::json;
using Lines = std::vector<std::pair<int, std::string>>;

const std::pair<int, std::string> kTryRegistry = {
    3, "WindowsFixInfo::getInfo(): try to get hot fixes from WMI."};
const std::string kRegistryFix =
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Updates\\KB7]\r\n\"Description\"=\"From the "
    "registry\"\r\n";

json queried(const json& objects) { return {{"wmi", {{"Win32_QuickFixEngineering", objects}}}}; }

// The route's lines for one object: for Description, HotFixID, InstalledBy
// and the date, whether each was taken.
Lines objectLines(bool description, bool hotFixId, bool installedBy, bool date) {
  const std::string route = "WindowsFixInfo::getPropertiesFromWMI(): ";
  return {{3, route + (description ? "Description found." : "Description is not String!")},
          {3, route + (hotFixId ? "Hot Fix ID found." : "Hot Fix ID is not String!")},
          {3, route + (installedBy ? "InstalledBy found." : "InstalledBy is not String!")},
          {3, route + (date ? "Install Date Found!" : "Install Date is not String!")}};
}

// Whether `route` leaves this thread's COM as it found it: joined once, by
// the test itself, in the multithreaded mode.
template <class Route>
bool leavesComAsFound(Route route) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  route();
  const bool stillJoined = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED) == RPC_E_CHANGED_MODE;
  CoUninitialize();
  const HRESULT fresh = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (SUCCEEDED(fresh)) CoUninitialize();
  return stillJoined && fresh == S_OK;
}

class QueriedFixes : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }

  FactList fixesOn(const json& description) {
    RegistryMachine machine(kRegistryFix, description);
    return WindowsFixInfo().getInfo();
  }

  LogCapture log;
};

TEST_F(QueriedFixes, ObjectsKeepWhatEarlierObjectsDelivered) {
  const FactList records = fixesOn(queried(json::array({
      {{"HotFixID", "KB0"}},
      {{"Description", "A"},
       {"HotFixID", "KB1"},
       {"InstalledBy", "me"},
       {"InstalledOn", "1/6/2009"}},
      {{"Description", 5}, {"HotFixID", "KB2"}},
      {{"Description", "C"},
       {"HotFixID", "KB3"},
       {"InstallDate", {{"date", "2009-01-06"}}},
       {"InstalledOn", "ignored"}},
      {{"HotFixID", "KB4"}, {"InstallDate", "2010-02-03"}},
  })));
  const std::string vendor = "Microsoft Corporation";
  ASSERT_EQ(records.size(), 5u);
  EXPECT_EQ(records[0], (FactMap{{"ProductVersion", "KB0"}, {"ProductVendor", vendor}}));
  FactMap expected = {{"ProductName", "A"},
                      {"ProductVersion", "KB1"},
                      {"InstalledBy", "me"},
                      {"ProductInstallDate", "1/6/2009"},
                      {"ProductVendor", vendor}};
  EXPECT_EQ(records[1], expected);
  expected["ProductVersion"] = "KB2";
  EXPECT_EQ(records[2], expected);
  // A date gives a blank-filled month and day.
  expected["ProductName"] = "C";
  expected["ProductVersion"] = "KB3";
  expected["ProductInstallDate"] = " 1/ 6/2009";
  EXPECT_EQ(records[3], expected);
  // A date given as text is not read, and what came before stays.
  expected["ProductVersion"] = "KB4";
  EXPECT_EQ(records[4], expected);

  Lines lines;
  for (const Lines& object :
       {objectLines(false, true, false, false), objectLines(true, true, true, false),
        objectLines(false, true, false, false), objectLines(true, true, false, true),
        objectLines(false, true, false, false)})
    lines.insert(lines.end(), object.begin(), object.end());
  EXPECT_EQ(log.lines(), lines);
}

TEST_F(QueriedFixes, TextsStopAtTheEndOfTheirBuffers) {
  const FactList records =
      fixesOn(queried(json::array({{{"Description", std::string(1500, 'x')}}})));
  EXPECT_EQ(records.at(0).at("ProductName"), std::string(1023, 'x'));
}

TEST_F(QueriedFixes, EachFailedStepIsLoggedUndoneAndTheRegistryAnswers) {
  const std::string failure = "WindowsFixInfo::getPropertiesFromWMI() ";
  const std::pair<const char*, std::string> steps[] = {
      {"CoInitializeEx", failure + "Failed to Initialize COM."},
      {"CoInitializeSecurity", failure + "Failed to initialize security. error code: 80070005"},
      {"CoCreateInstance", failure + "Failed to create IWbemLocator object."},
      {"IWbemLocator::ConnectServer", failure + "Could not connect."},
      {"CoSetProxyBlanket", failure + "Could not set proxy blanket."},
      {"IWbemServices::ExecQuery", failure + "Query for Win32_QuickFixEngineering failed."}};
  for (const auto& step : steps) {
    log.clear();
    json description = queried(json::array({{{"Description", "From WMI"}}}));
    description["fail"] = {{step.first, "0x80070005"}};
    FactList records;
    EXPECT_TRUE(leavesComAsFound([&] { records = fixesOn(description); })) << step.first;
    ASSERT_EQ(records.size(), 1u) << step.first;
    EXPECT_EQ(records[0].at("ProductName"), "From the registry") << step.first;
    EXPECT_EQ(log.lines(), (Lines{{3, step.second}, kTryRegistry})) << step.first;
  }
}

TEST_F(QueriedFixes, SecuritySetBeforeAndAnEmptyQueryAreNoFailures) {
  json description = queried(json::array({{{"Description", "From WMI"}}}));
  description["fail"] = {{"CoInitializeSecurity", "0x80010119"}};
  FactList records;
  EXPECT_TRUE(leavesComAsFound([&] { records = fixesOn(description); }));
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].at("ProductName"), "From WMI");

  log.clear();
  EXPECT_TRUE(leavesComAsFound([&] { records = fixesOn(queried(json::array())); }));
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].at("ProductName"), "From the registry");
  EXPECT_EQ(log.lines(), Lines{kTryRegistry});
}

TEST_F(QueriedFixes, DuplicateObjectsAreTwoRecordsButOneInstance) {
  auto ns = makeSchemaNamespace();
  RegistryMachine machine(kRegistryFix,
                          queried(json::array({{{"Description", "Update"}, {"HotFixID", "KB1"}},
                                               {{"Description", "Update"}, {"HotFixID", "KB1"}},
                                               {{"Description", "Update"}, {"HotFixID", "KB2"}}})));
  EXPECT_EQ(SystemInformation(ns).collectClass(ns->GetClass("QELTO_InstalledFix", {})), 2);
  EXPECT_EQ(propertyValues(*ns, "ProductVersion"), (std::vector<std::string>{"KB1", "KB2"}));
  EXPECT_EQ(log.lines().back(),
            (std::pair<int, std::string>{3,
                                         "InstalledFixInfo::getCIMInstances Encountered an error "
                                         "generating CIM instances. Error Code: 11"}));
}

}  // namespace
}  // namespace installedapps_col
