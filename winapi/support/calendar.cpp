#include "winapi/support/calendar.h"

#include <cctype>
#include <cstdio>
#include <utility>

namespace winapi {

namespace {

constexpr std::int64_t kMillisecondsPerDay = 86400000;

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
  return a / b - (a % b != 0 && (a < 0) != (b < 0));
}

bool isLeap(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// Reads `count` digits at `pos`; nullopt unless all are digits.
std::optional<unsigned> digits(std::string_view text, std::size_t pos, std::size_t count) {
  if (pos + count > text.size()) return std::nullopt;
  unsigned value = 0;
  for (std::size_t i = pos; i < pos + count; ++i) {
    if (!std::isdigit(static_cast<unsigned char>(text[i]))) return std::nullopt;
    value = value * 10 + static_cast<unsigned>(text[i] - '0');
  }
  return value;
}

// The separators of "YYYY-MM-DDThh:mm:ss" by position.
bool separatorsMatch(std::string_view text) {
  static const std::pair<std::size_t, char> kSeparators[] = {
      {4, '-'}, {7, '-'}, {10, 'T'}, {13, ':'}, {16, ':'}};
  for (auto [pos, c] : kSeparators)
    if (text.size() <= pos || text[pos] != c) return false;
  return true;
}

// ".fff…" after the seconds, as milliseconds; the position after it goes to `end`.
std::optional<unsigned> fraction(std::string_view text, std::size_t& end) {
  end = 19;
  if (end >= text.size() || text[end] != '.') return 0u;
  std::size_t first = ++end;
  unsigned ms = 0;
  for (; end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])); ++end)
    if (end - first < 3) ms = ms * 10 + static_cast<unsigned>(text[end] - '0');
  std::size_t count = end - first;
  if (count == 0 || count > 9) return std::nullopt;
  for (; count < 3; ++count) ms *= 10;
  return ms;
}

}  // namespace

std::int64_t daysFromCivil(int year, unsigned month, unsigned day) {
  // Years counted from March, so that the leap day ends the year.
  std::int64_t y = static_cast<std::int64_t>(year) - (month <= 2);
  std::int64_t era = floorDiv(y, 400);
  std::int64_t yearOfEra = y - era * 400;
  std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

unsigned daysInMonth(int year, unsigned month) {
  static const unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
}

unsigned dayOfWeek(std::int64_t days) {
  // 1970-01-01 was a Thursday.
  return static_cast<unsigned>(days + 4 - floorDiv(days + 4, 7) * 7);
}

CivilTime civilFromMilliseconds(std::int64_t milliseconds) {
  std::int64_t days = floorDiv(milliseconds, kMillisecondsPerDay);
  std::int64_t inDay = milliseconds - days * kMillisecondsPerDay;
  std::int64_t z = days + 719468;
  std::int64_t era = floorDiv(z, 146097);
  std::int64_t dayOfEra = z - era * 146097;
  std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  std::int64_t mp = (5 * dayOfYear + 2) / 153;
  CivilTime time;
  time.day = static_cast<unsigned>(dayOfYear - (153 * mp + 2) / 5 + 1);
  time.month = static_cast<unsigned>(mp < 10 ? mp + 3 : mp - 9);
  time.year = static_cast<int>(yearOfEra + era * 400 + (time.month <= 2));
  time.hour = static_cast<unsigned>(inDay / 3600000);
  time.minute = static_cast<unsigned>(inDay / 60000 % 60);
  time.second = static_cast<unsigned>(inDay / 1000 % 60);
  time.millisecond = static_cast<unsigned>(inDay % 1000);
  time.dayOfWeek = dayOfWeek(days);
  return time;
}

std::int64_t millisecondsFromCivil(const CivilTime& time) {
  return daysFromCivil(time.year, time.month, time.day) * kMillisecondsPerDay +
         ((static_cast<std::int64_t>(time.hour) * 60 + time.minute) * 60 + time.second) * 1000 +
         time.millisecond;
}

namespace {

std::optional<std::int64_t> civilMilliseconds(unsigned year, unsigned month, unsigned day,
                                              unsigned hour, unsigned minute, unsigned second,
                                              unsigned ms) {
  if (month < 1 || month > 12 || day < 1 || day > daysInMonth(static_cast<int>(year), month) ||
      hour > 23 || minute > 59 || second > 59)
    return std::nullopt;
  return millisecondsFromCivil({static_cast<int>(year), month, day, hour, minute, second, ms, 0});
}

// "YYYY-MM-DDThh:mm:ss[.fff]" and the position after it, its zone not read.
std::optional<std::int64_t> isoWallClock(std::string_view text, std::size_t& end) {
  if (!separatorsMatch(text)) return std::nullopt;
  auto year = digits(text, 0, 4), month = digits(text, 5, 2), day = digits(text, 8, 2);
  auto hour = digits(text, 11, 2), minute = digits(text, 14, 2), second = digits(text, 17, 2);
  auto ms = fraction(text, end);
  if (!year || !month || !day || !hour || !minute || !second || !ms) return std::nullopt;
  return civilMilliseconds(*year, *month, *day, *hour, *minute, *second, *ms);
}

// "+hh:mm", "-hhmm" or "+hh" east of UTC, in minutes; nullopt for anything else.
std::optional<std::int64_t> isoOffsetMinutes(std::string_view zone) {
  if (zone.empty() || (zone[0] != '+' && zone[0] != '-')) return std::nullopt;
  auto hours = digits(zone, 1, 2);
  std::optional<unsigned> minutes = 0u;
  if (zone.size() == 6 && zone[3] == ':')
    minutes = digits(zone, 4, 2);
  else if (zone.size() == 5)
    minutes = digits(zone, 3, 2);
  else if (zone.size() != 3)
    return std::nullopt;
  if (!hours || !minutes || *hours > 23 || *minutes > 59) return std::nullopt;
  std::int64_t offset = *hours * 60 + *minutes;
  return zone[0] == '-' ? -offset : offset;
}

// CIM date-time text "yyyymmddHHMMSS.mmmmmm+UUU": a local time and its offset east of UTC.
std::optional<std::int64_t> parseCimTime(std::string_view text) {
  if (text.size() != 25 || text[14] != '.' || (text[21] != '+' && text[21] != '-'))
    return std::nullopt;
  auto year = digits(text, 0, 4), month = digits(text, 4, 2), day = digits(text, 6, 2);
  auto hour = digits(text, 8, 2), minute = digits(text, 10, 2), second = digits(text, 12, 2);
  auto micro = digits(text, 15, 6), offset = digits(text, 22, 3);
  if (!year || !month || !day || !hour || !minute || !second || !micro || !offset)
    return std::nullopt;
  auto local = civilMilliseconds(*year, *month, *day, *hour, *minute, *second, *micro / 1000);
  if (!local) return std::nullopt;
  std::int64_t east = text[21] == '-' ? -std::int64_t{*offset} : *offset;
  return *local - east * 60000;
}

}  // namespace

std::optional<std::int64_t> parseUtcTime(std::string_view text) {
  std::size_t end = 0;
  auto time = isoWallClock(text, end);
  if (!time || end + 1 != text.size() || text[end] != 'Z') return std::nullopt;
  return time;
}

std::optional<std::int64_t> parseZonedTime(std::string_view text) {
  if (auto cim = parseCimTime(text)) return cim;
  std::size_t end = 0;
  auto time = isoWallClock(text, end);
  if (!time || end >= text.size()) return std::nullopt;
  if (text.substr(end) == "Z") return time;
  auto offset = isoOffsetMinutes(text.substr(end));
  if (!offset) return std::nullopt;
  return *time - *offset * 60000;
}

std::string formatUtcTime(std::int64_t milliseconds) {
  CivilTime time = civilFromMilliseconds(milliseconds);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02u:%02u:%02u.%03uZ", time.year, time.month,
                time.day, time.hour, time.minute, time.second, time.millisecond);
  return text;
}

}  // namespace winapi
