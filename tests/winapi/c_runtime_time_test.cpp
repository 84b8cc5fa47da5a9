#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "test_machine.h"
#include "winapi/include/c_runtime.h"
#include "winapi/include/windows.h"

using nlohmann::json;

namespace {

const char* const kPacific =
    R"({"bias": 480, "standardBias": 0, "daylightBias": -60,
    "standardDate": {"month": 11, "dayOfWeek": 0, "day": 1, "hour": 2},
    "daylightDate": {"month": 3, "dayOfWeek": 0, "day": 2, "hour": 2}})";
const char* const kIndia = R"({"bias": -330})";
// A daylight rule without a daylight bias.
const char* const kFlat = R"({"bias": -60, "standardBias": 0, "daylightBias": 0,
    "standardDate": {"month": 10, "day": 5, "hour": 3}, "daylightDate": {"month": 3, "day": 5}})";

json machineWith(const char* zone) {
  json description = {{"now", "2026-03-08T10:00:00.999Z"}};
  if (zone) description["timeZone"] = json::parse(zone);
  return description;
}

std::string local(__time64_t time) {
  const struct tm* t = _localtime64(&time);
  if (!t) return errno == EINVAL ? "null, EINVAL" : "null";
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d day %d of %d dst %d",
                t->tm_year + 1900, t->tm_mon + 1, t->tm_mday, t->tm_hour, t->tm_min, t->tm_sec,
                t->tm_wday, t->tm_yday, t->tm_isdst);
  return text;
}

std::string runtimeZone() {
  long seconds = 12345;
  int daylight = 7;
  EXPECT_EQ(_get_timezone(&seconds), 0);
  EXPECT_EQ(_get_daylight(&daylight), 0);
  return std::to_string(seconds) + " west, daylight " + std::to_string(daylight);
}

TEST(CRuntimeTime, TheZoneComesFromTheSystemsZoneBeforeAndAfterTzset) {
  const std::pair<const char*, const char*> cases[] = {
      {kPacific, "28800 west, daylight 1"},
      {kIndia, "-19800 west, daylight 0"},
      {kFlat, "-3600 west, daylight 0"},
      // Without a zone the runtime keeps its own default, Pacific time.
      {nullptr, "28800 west, daylight 1"},
  };
  for (const auto& [zone, expected] : cases) {
    CurrentMachine machine(machineWith(zone));
    EXPECT_EQ(runtimeZone(), expected) << (zone ? zone : "no zone");
    _tzset();
    EXPECT_EQ(runtimeZone(), expected) << (zone ? zone : "no zone");
  }
  EXPECT_EQ(_get_timezone(nullptr), EINVAL);
  EXPECT_EQ(_get_daylight(nullptr), EINVAL);
}

TEST(CRuntimeTime, LocalTimeFollowsTheDaylightRuleAtThatInstant) {
  CurrentMachine machine(machineWith(kPacific));
  __time64_t now = 0;
  EXPECT_EQ(_time64(&now), 1772964000);
  EXPECT_EQ(now, 1772964000);
  EXPECT_EQ(local(now - 1), "2026-03-08 01:59:59 day 0 of 66 dst 0");
  EXPECT_EQ(local(now), "2026-03-08 03:00:00 day 0 of 66 dst 1");
  EXPECT_EQ(local(32535215999), "3000-12-31 15:59:59 day 3 of 364 dst 0");
  EXPECT_EQ(local(32535216000), "null, EINVAL");
  EXPECT_EQ(local(-1), "null, EINVAL");
  EXPECT_EQ(_localtime64(nullptr), nullptr);

  CurrentMachine india(machineWith(kIndia));
  EXPECT_EQ(local(1782936000), "2026-07-02 01:30:00 day 4 of 182 dst 0");
  CurrentMachine noZone(machineWith(nullptr));
  EXPECT_EQ(local(1782936000), "2026-07-01 13:00:00 day 3 of 181 dst 1");
}

}  // namespace
