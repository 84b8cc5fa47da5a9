// Moments as people give them (--now) and as descriptions keep them.
#include "winapi/support/calendar.h"

#include <gtest/gtest.h>

namespace winapi {
namespace {

TEST(Calendar, AZonedTimeIsTheSameMomentInEveryForm) {
  const std::int64_t moment = *parseUtcTime("2026-11-22T10:15:30Z");
  for (const char* text :
       {"2026-11-22T10:15:30Z", "2026-11-22T11:15:30+01:00", "2026-11-22T05:15:30-0500",
        "2026-11-22T15:45:30+05:30", "2026-11-22T12:15:30+02", "20261122111530.000000+060",
        "20261122051530.000000-300"})
    EXPECT_EQ(parseZonedTime(text), moment) << text;
  EXPECT_EQ(parseZonedTime("2026-11-22T10:15:30.250Z"), moment + 250);
  EXPECT_EQ(parseZonedTime("20261122101530.250999+000"), moment + 250);
  // A date across the day line.
  EXPECT_EQ(parseZonedTime("2026-11-23T00:15:30+14:00"), moment);
}

TEST(Calendar, AZonedTimeWithoutItsZoneOrOutOfRangeIsRefused) {
  for (const char* text :
       {"2026-11-22T10:15:30", "2026-11-22T10:15:30+1", "2026-11-22T10:15:30+24:00",
        "2026-11-22T10:15:30+01:60", "2026-02-29T10:15:30Z", "2026-11-22 10:15:30Z",
        "20261122101530.000000+60", "20261122101530.000000:000", "20261322101530.000000+000",
        "2026-11-22T10:15:30Zjunk", ""})
    EXPECT_EQ(parseZonedTime(text), std::nullopt) << text;
}

TEST(Calendar, FormattedTimesReadBack) {
  for (const char* text : {"2026-11-22T10:15:30.000Z", "1601-01-01T00:00:00.000Z",
                           "2000-02-29T23:59:59.999Z", "1969-12-31T23:59:59.001Z"})
    EXPECT_EQ(formatUtcTime(*parseUtcTime(text)), text);
  EXPECT_EQ(millisecondsFromFileTime(116444736000000000ULL), 0);
  EXPECT_EQ(millisecondsFromFileTime(0), -11644473600000);
}

}  // namespace
}  // namespace winapi
