#include "store/timestamp_text.h"

#include <gtest/gtest.h>

#include "host/status.h"

namespace {

using vrxstore::utcTimestamp;

TEST(TimestampText, CimDateTimeAsItsMomentInUtc) {
  EXPECT_EQ(utcTimestamp("20261122101530.000000+060"), "2026-11-22T09:15:30.000000+00:00");
  EXPECT_EQ(utcTimestamp("20261122101530.123456+000"), "2026-11-22T10:15:30.123456+00:00");
  // West of UTC, across the end of a day, a leap day and a year.
  EXPECT_EQ(utcTimestamp("20240228230000.000000-300"), "2024-02-29T04:00:00.000000+00:00");
  EXPECT_EQ(utcTimestamp("20261231220000.000000-180"), "2027-01-01T01:00:00.000000+00:00");
  EXPECT_EQ(utcTimestamp("20260101003000.000000+060"), "2025-12-31T23:30:00.000000+00:00");
  EXPECT_EQ(utcTimestamp("16010101000000.000000+000"), "1601-01-01T00:00:00.000000+00:00");
  EXPECT_EQ(utcTimestamp("00000003004407.000000:000"), "") << "an interval is no moment";
  EXPECT_THROW(utcTimestamp("2026-11-22"), NZARVEK20::TVRXException);
}

}  // namespace
