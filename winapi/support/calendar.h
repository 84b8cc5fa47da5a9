// Civil (proleptic Gregorian) dates and times counted in milliseconds since 1970-01-01 UTC.
#ifndef VRX_WINAPI_CALENDAR_H
#define VRX_WINAPI_CALENDAR_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace winapi {

struct CivilTime {
  int year = 1970;
  unsigned month = 1;  // 1-12
  unsigned day = 1;    // 1-31
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  unsigned millisecond = 0;
  unsigned dayOfWeek = 4;  // 0 = Sunday
};

std::int64_t daysFromCivil(int year, unsigned month, unsigned day);
unsigned daysInMonth(int year, unsigned month);
unsigned dayOfWeek(std::int64_t days);

CivilTime civilFromMilliseconds(std::int64_t milliseconds);
std::int64_t millisecondsFromCivil(const CivilTime& time);  // dayOfWeek is not read

// "2026-11-22T10:15:30Z", optionally with a fraction of a second; nullopt when not that form.
std::optional<std::int64_t> parseUtcTime(std::string_view text);
// A FILETIME (100-nanosecond ticks since 1601-01-01 UTC) in milliseconds since 1970.
constexpr std::int64_t millisecondsFromFileTime(std::uint64_t fileTime) {
  return static_cast<std::int64_t>(fileTime / 10000) - 11644473600000;
}

// A moment as a person gives one: ISO 8601 with its zone ("2026-11-22T10:15:30Z",
// "2026-11-22T11:15:30+01:00") or CIM date-time text ("20261122111530.000000+060").
std::optional<std::int64_t> parseZonedTime(std::string_view text);
// The form parseUtcTime reads, to the millisecond: "2026-11-22T10:15:30.000Z".
std::string formatUtcTime(std::int64_t milliseconds);

}  // namespace winapi

#endif
