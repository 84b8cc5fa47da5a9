#include "store/timestamp_text.h"

#include <chrono>
#include <cstdio>

#include "host/cim_datetime.h"

namespace vrxstore {
namespace {

// Days since 1970-01-01 of a civil date, and back (H. Hinnant's algorithms).
long long daysFromCivil(long long y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long long>(doe) - 719468;
}

void civilFromDays(long long z, long long& y, unsigned& m, unsigned& d) {
  z += 719468;
  const long long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = doy - (153 * mp + 2) / 5 + 1;
  m = mp < 10 ? mp + 3 : mp - 9;
  y = static_cast<long long>(yoe) + era * 400 + (m <= 2);
}

std::string textOf(long long seconds, unsigned microseconds) {
  const long long days = (seconds >= 0 ? seconds : seconds - 86399) / 86400;
  const long long inDay = seconds - days * 86400;
  long long year;
  unsigned month, day;
  civilFromDays(days, year, month, day);
  char text[96];
  std::snprintf(text, sizeof text, "%04lld-%02u-%02uT%02lld:%02lld:%02lld.%06u+00:00", year, month,
                day, inDay / 3600, inDay / 60 % 60, inDay % 60, microseconds);
  return text;
}

}  // namespace

std::string utcTimestamp(const std::string& cimText) {
  const NZARVEK20::TCIMDateTime time(cimText);
  if (time.IsInterval() || time.IsNull()) return "";
  const long long local = daysFromCivil(time.GetYear(), time.GetMonth(), time.GetDay()) * 86400 +
                          time.GetHours() * 3600 + time.GetMinutes() * 60 + time.GetSeconds();
  // The CIM offset is minutes east of UTC: local time less the offset is UTC.
  return textOf(local - time.GetUtcOffset() * 60LL, time.GetMicroseconds());
}

std::string utcNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now);
  return textOf(seconds.count(),
                static_cast<unsigned>(
                    std::chrono::duration_cast<std::chrono::microseconds>(now - seconds).count()));
}

}  // namespace vrxstore
