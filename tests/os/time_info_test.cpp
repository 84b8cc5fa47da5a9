#include <gtest/gtest.h>

#include "os/os_time_info.h"
#include "os/time_zone_info.h"
#include "plugin/system_information.h"
#include "tests/os/os_test_machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Lines = std::vector<std::pair<int, std::string>>;

const std::string kSuccess = "pdhStatus=ERROR_SUCCESS";

std::string text(const TCIMValue& value) { return static_cast<std::string>(value); }

class TimeInfo : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  LogCapture log;
};

TEST_F(TimeInfo, UpTimeIsAnIntervalAndTheBootTimeLocalWithTheZonesOffset) {
  struct Case {
    const char* now;
    int seconds;
    const char* bootTime;
    const char* upTime;
  };
  const Case cases[] = {
      // Winter: standard time, one hour east of UTC.
      {"2026-11-22T10:15:30Z", 70000, "20261121154850.000000+060", "00000000192640.000000:000"},
      {"2026-11-22T10:15:30Z", 90061, "20261121101429.000000+060", "00000001010101.000000:000"},
      // Summer: daylight time, two hours east.
      {"2026-07-01T00:00:10Z", 10, "20260701020000.000000+120", "00000000000010.000000:000"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.now);
    nlohmann::json machine = windows7();
    machine["now"] = c.now;
    machine["uptimeSeconds"] = c.seconds;
    OsMachine current(machine);
    const PropertyMap values = OSTimeInfo().getTimeProperties();
    EXPECT_EQ(text(values.at("LastBootUpTime")), c.bootTime);
    EXPECT_EQ(text(values.at("UpTime")), c.upTime);
  }
}

TEST_F(TimeInfo, EachReadingLogsTheStatusOfEveryCounterCall) {
  OsMachine current(windows7());
  OSTimeInfo().getTimeProperties();
  // Path, add, information, sample, value, removal; once per property.
  EXPECT_EQ(log.lines(), Lines(12, {4, kSuccess}));
}

TEST_F(TimeInfo, ACounterThatCantBeAddedLeavesTheBootTimeAtTheNextSecond) {
  nlohmann::json machine = windows7();
  machine["fail"] = {{"PdhAddCounterA", "0xC0000BB9"}};
  OsMachine current(machine);
  const PropertyMap values = OSTimeInfo().getTimeProperties();
  EXPECT_EQ(text(values.at("LastBootUpTime")), "20261122111531.000000+060");
  EXPECT_EQ(text(values.at("UpTime")), "00000000000000.000000:000");
  const Lines reading = {
      {4, kSuccess},
      {4,
       "pdhStatus=PDH_CSTATUS_NO_COUNTER  The specified counter was not found in the "
       "specified object."},
      {4, "pdhStatus=PDH_INVALID_HANDLE"}};
  Lines both = reading;
  both.insert(both.end(), reading.begin(), reading.end());
  EXPECT_EQ(log.lines(), both);
}

TEST_F(TimeInfo, AFailedSampleSkipsOnlyTheValue) {
  nlohmann::json machine = windows7();
  machine["fail"] = {{"PdhCollectQueryData", "0x800007D5"}};
  OsMachine current(machine);
  EXPECT_EQ(text(OSTimeInfo().readUpTime(false)), "00000000000000.000000:000");
  EXPECT_EQ(log.lines(), (Lines{{4, kSuccess},
                                {4, kSuccess},
                                {4, kSuccess},
                                {4, "Unable to Determine pdhStatus (pdhStatus= -2147481643)"},
                                {4, kSuccess}}));
}

TEST_F(TimeInfo, StatusTextsKeepTheirExactWording) {
  OSTimeInfo info;
  info.reportPdhStatus(0x800007D2);
  info.reportPdhStatus(1);
  info.reportPdhStatus(0x800007D3);
  info.reportPdhStatus(0xC0000BC6);
  EXPECT_EQ(log.lines(),
            (Lines{{4,
                    "pdhStatus=PDH_MORE_DATA  The supplied buffer was not large enough to store "
                    "all of the counter data. Allocate a larger buffer and execute the "
                    "function again. "},
                   {4,
                    "pdhStatus=PDH_CSTATUS_NEW_DATA  The data for the counter was returned "
                    "successfully and is different from the last time the counter was read."},
                   {4,
                    "pdhStatus=PDH_CSTATUS_ITEM_NOT_VALIDATED The counter has been added to "
                    "the query, but has not been validated nor accessed."},
                   {4, "Unable to Determine pdhStatus (pdhStatus= -1073738810)"}}));
}

TEST_F(TimeInfo, TheOffsetFollowsTheZonesPresentState) {
  struct Case {
    const char* now;
    nlohmann::json failure;  // what GetTimeZoneInformation answers instead
    short offset;
  };
  const Case cases[] = {{"2026-11-22T10:15:30Z", nullptr, 60},
                        {"2026-07-01T00:00:00Z", nullptr, 120},
                        {"2026-07-01T00:00:00Z", 0, 0},
                        {"2026-07-01T00:00:00Z", "0xFFFFFFFF", 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.now + c.failure.dump());
    nlohmann::json machine = windows7();
    machine["now"] = c.now;
    if (!c.failure.is_null()) machine["fail"] = {{"GetTimeZoneInformation", c.failure}};
    OsMachine current(machine);
    EXPECT_EQ(OSTimeInfo().getUtcOffsetMinutes(), c.offset);
  }
}

TEST_F(TimeInfo, TheZoneIsNamedByItsDaylightBias) {
  struct Case {
    int daylightBias;
    unsigned char daylightSaving;
    const char* name;
  };
  const Case cases[] = {{-60, 2, "W. Europe Daylight Time"},
                        {0, 1, "W. Europe Standard Time"},
                        {-30, 0, "W. Europe Standard Time"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.daylightBias);
    nlohmann::json machine = windows7();
    machine["timeZone"]["daylightBias"] = c.daylightBias;
    OsMachine current(machine);
    TTimeZone zone;
    OSTimeInfo().fillTimeZone(zone);
    EXPECT_EQ(zone.daylightSaving, c.daylightSaving);
    EXPECT_EQ(zone.timeZoneName, c.name);
  }
}

TEST_F(TimeInfo, TheTimeZoneInstanceHoldsTheZoneAndBothClocks) {
  nlohmann::json machine = windows7();
  machine["now"] = "2026-11-22T10:15:30.250Z";
  machine["timeZone"]["standardName"] = "Mitteleurop\xc3\xa4ische Zeit";
  machine["timeZone"]["daylightBias"] = 0;
  OsMachine current(machine);
  auto ns = makeSchemaNamespace();
  EXPECT_EQ(SystemInformation(ns).collectClass(ns->GetClass("QELTO_TimeZone", {})), 1);
  ASSERT_EQ(ns->GetInstances().size(), 1u);
  EXPECT_EQ(propertyValues(*ns, "TheTimeZone"),
            (std::vector<std::string>{"Mitteleurop\xe4ische Zeit"}));
  EXPECT_EQ(propertyValues(*ns, "DaylightSaving"), (std::vector<std::string>{"1"}));
  EXPECT_EQ(propertyValues(*ns, "LocalDateTime"),
            (std::vector<std::string>{"20261122111530.250000+060"}));
  EXPECT_EQ(propertyValues(*ns, "GMTDateTime"),
            (std::vector<std::string>{"20261122101530.250000+000"}));
}

TEST_F(TimeInfo, AnInstanceTheHostRefusesIsLogged) {
  OsMachine current(windows7());
  EXPECT_EQ(TTimeZoneinfo(nullptr).getCIMInstances(), 0);
  EXPECT_EQ(log.lines(),
            (Lines{{3,
                    "OSInfo::getCIMInstances Encountered an error Encountered an error "
                    "generating CIM instances. Error Code: 7"}}));
}

}  // namespace
}  // namespace installedapps_col
