#include "winapi/machine/time_zone.h"

#include "winapi/support/calendar.h"

namespace winapi {

namespace {

constexpr std::int64_t kMillisecondsPerMinute = 60000;

// Sums in 64 bits: machine.json may give any LONG.
std::int64_t biasMilliseconds(std::int32_t bias, std::int32_t extra) {
  return (std::int64_t{bias} + extra) * kMillisecondsPerMinute;
}

// Day of the month of the `week`-th (1-5, 5 = last) `weekday` of the month.
unsigned nthWeekday(int year, unsigned month, unsigned weekday, unsigned week) {
  unsigned first = dayOfWeek(daysFromCivil(year, month, 1));
  unsigned day = 1 + (weekday + 7 - first) % 7 + 7 * (week - 1);
  while (day > daysInMonth(year, month)) day -= 7;
  return day;
}

// The wall-clock instant of a transition in `year`, counted as if that wall clock were UTC.
std::int64_t transitionWallClock(const TransitionRule& rule, int year) {
  unsigned day = rule.year == 0 ? nthWeekday(year, rule.month, rule.dayOfWeek, rule.day) : rule.day;
  return millisecondsFromCivil(
      {year, rule.month, day, rule.hour, rule.minute, rule.second, rule.milliseconds, 0});
}

}  // namespace

ZoneState zoneStateAt(const TimeZone& zone, std::int64_t utcMilliseconds) {
  if (zone.daylightDate.month == 0) return ZoneState::NoDaylightRule;
  std::int64_t standardOffset = biasMilliseconds(zone.bias, zone.standardBias);
  std::int64_t daylightOffset = biasMilliseconds(zone.bias, zone.daylightBias);
  int year = civilFromMilliseconds(utcMilliseconds - standardOffset).year;
  // Daylight time starts at a standard-time wall clock and ends at a daylight-time one.
  std::int64_t daylightStarts = transitionWallClock(zone.daylightDate, year) + standardOffset;
  std::int64_t standardStarts = transitionWallClock(zone.standardDate, year) + daylightOffset;
  bool daylight = daylightStarts < standardStarts
                      ? utcMilliseconds >= daylightStarts && utcMilliseconds < standardStarts
                      // Southern hemisphere: daylight time spans the turn of the year.
                      : utcMilliseconds >= daylightStarts || utcMilliseconds < standardStarts;
  return daylight ? ZoneState::Daylight : ZoneState::Standard;
}

std::int64_t biasAt(const TimeZone& zone, std::int64_t utcMilliseconds) {
  bool daylight = zoneStateAt(zone, utcMilliseconds) == ZoneState::Daylight;
  return std::int64_t{zone.bias} + (daylight ? zone.daylightBias : zone.standardBias);
}

}  // namespace winapi
