#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/windows.h"

using nlohmann::json;

namespace {

const char* const kPacific =
    R"({"bias": 480, "standardName": "Pacific Standard Time", "standardBias": 0,
    "daylightName": "Pacific Daylight Time", "daylightBias": -60,
    "standardDate": {"month": 11, "dayOfWeek": 0, "day": 1, "hour": 2},
    "daylightDate": {"month": 3, "dayOfWeek": 0, "day": 2, "hour": 2}})";
// Southern hemisphere: daylight time spans the turn of the year.
const char* const kSydney = R"({"bias": -600, "standardName": "AUS Eastern Standard Time",
    "daylightName": "AUS Eastern Daylight Time", "daylightBias": -60,
    "standardDate": {"month": 4, "dayOfWeek": 0, "day": 1, "hour": 3},
    "daylightDate": {"month": 10, "dayOfWeek": 0, "day": 1, "hour": 2}})";
// Day 5: the last Sunday of the month.
const char* const kBerlin = R"({"bias": -60, "daylightBias": -60,
    "standardDate": {"month": 10, "dayOfWeek": 0, "day": 5, "hour": 3},
    "daylightDate": {"month": 3, "dayOfWeek": 0, "day": 5, "hour": 2}})";
const char* const kIndia = R"({"bias": -330, "standardName": "India Standard Time"})";

std::string text(const SYSTEMTIME& t) {
  char out[64];
  std::snprintf(out, sizeof out, "%04u-%02u-%02u %02u:%02u:%02u.%03u day %u", t.wYear, t.wMonth,
                t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds, t.wDayOfWeek);
  return out;
}

TEST(Time, ZoneRulesDecideStandardOrDaylightAcrossTheirTransitions) {
  struct Case {
    const char* zone;
    const char* now;
    DWORD id;
    const char* local;
  };
  const Case cases[] = {
      {kPacific, "2026-03-08T09:59:59Z", TIME_ZONE_ID_STANDARD, "2026-03-08 01:59:59.000 day 0"},
      {kPacific, "2026-03-08T10:00:00Z", TIME_ZONE_ID_DAYLIGHT, "2026-03-08 03:00:00.000 day 0"},
      {kPacific, "2026-11-01T08:59:59Z", TIME_ZONE_ID_DAYLIGHT, "2026-11-01 01:59:59.000 day 0"},
      {kPacific, "2026-11-01T09:00:00Z", TIME_ZONE_ID_STANDARD, "2026-11-01 01:00:00.000 day 0"},
      {kSydney, "2026-04-04T15:59:59Z", TIME_ZONE_ID_DAYLIGHT, "2026-04-05 02:59:59.000 day 0"},
      {kSydney, "2026-04-04T16:00:00Z", TIME_ZONE_ID_STANDARD, "2026-04-05 02:00:00.000 day 0"},
      {kSydney, "2026-10-03T15:59:59Z", TIME_ZONE_ID_STANDARD, "2026-10-04 01:59:59.000 day 0"},
      {kSydney, "2026-10-03T16:00:00Z", TIME_ZONE_ID_DAYLIGHT, "2026-10-04 03:00:00.000 day 0"},
      {kSydney, "2026-12-31T14:30:00.5Z", TIME_ZONE_ID_DAYLIGHT, "2027-01-01 01:30:00.500 day 5"},
      {kBerlin, "2026-03-29T00:59:59Z", TIME_ZONE_ID_STANDARD, "2026-03-29 01:59:59.000 day 0"},
      {kBerlin, "2026-03-29T01:00:00Z", TIME_ZONE_ID_DAYLIGHT, "2026-03-29 03:00:00.000 day 0"},
      {kBerlin, "2026-10-25T00:59:59Z", TIME_ZONE_ID_DAYLIGHT, "2026-10-25 02:59:59.000 day 0"},
      {kBerlin, "2026-10-25T01:00:00Z", TIME_ZONE_ID_STANDARD, "2026-10-25 02:00:00.000 day 0"},
      {kIndia, "2026-07-01T20:00:00Z", TIME_ZONE_ID_UNKNOWN, "2026-07-02 01:30:00.000 day 4"},
  };
  for (const Case& c : cases) {
    CurrentMachine machine(json{{"now", c.now}, {"timeZone", json::parse(c.zone)}});
    TIME_ZONE_INFORMATION info;
    EXPECT_EQ(GetTimeZoneInformation(&info), c.id) << c.now;
    SYSTEMTIME local;
    GetLocalTime(&local);
    EXPECT_EQ(text(local), c.local) << c.now;
  }
}

TEST(Time, GetTimeZoneInformationCopiesTheZone) {
  json zone = json::parse(kPacific);
  zone["daylightName"] = "A daylight name longer than thirty-one characters";
  CurrentMachine machine(json{{"timeZone", zone}});
  TIME_ZONE_INFORMATION info;
  std::memset(&info, 0xAB, sizeof info);
  GetTimeZoneInformation(&info);
  EXPECT_EQ(info.Bias, 480);
  EXPECT_EQ(std::wstring(info.StandardName), L"Pacific Standard Time");
  EXPECT_EQ(std::wstring(info.DaylightName), L"A daylight name longer than thi");
  EXPECT_EQ(info.StandardBias, 0);
  EXPECT_EQ(info.DaylightBias, -60);
  EXPECT_EQ(text(info.StandardDate), "0000-11-01 02:00:00.000 day 0");
  EXPECT_EQ(text(info.DaylightDate), "0000-03-02 02:00:00.000 day 0");
}

TEST(Time, AMachineWithoutAZoneKeepsUtc) {
  CurrentMachine machine(json{{"now", "2026-11-22T10:15:30.125Z"}});
  TIME_ZONE_INFORMATION info;
  std::memset(&info, 0xAB, sizeof info);
  EXPECT_EQ(GetTimeZoneInformation(&info), TIME_ZONE_ID_INVALID);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(info.Bias, static_cast<LONG>(0xABABABAB));

  SYSTEMTIME utc, local;
  GetSystemTime(&utc);
  GetLocalTime(&local);
  EXPECT_EQ(text(utc), "2026-11-22 10:15:30.125 day 0");
  EXPECT_EQ(text(local), text(utc));
}

}  // namespace
