// The Microsoft C runtime's clock and zone: _time64, _tzset, _get_timezone, _get_daylight and
// _localtime64. The runtime takes its zone from GetTimeZoneInformation as its tzset does:
// _timezone is the standard bias in seconds west, _daylight says whether the zone has a daylight
// rule with a bias, _dstbias is the daylight bias relative to standard time. Without a zone it
// keeps its built-in Pacific time (PST8PDT, US rule).
#include <cerrno>
#include <cstdint>

#include "winapi/include/c_runtime.h"
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/time_zone.h"
#include "winapi/support/calendar.h"

namespace {

constexpr long kSecondsPerMinute = 60;
// The last second the runtime breaks down: 3000-12-31 23:59:59 UTC.
constexpr __time64_t kLastTime64 = 32535215999;

struct RuntimeZone {
  long timezone = 8 * 3600;
  int daylight = 1;
  long dstbias = -3600;
  winapi::TimeZone rules{480, "", {0, 11, 0, 1, 2}, 0, "", {0, 3, 0, 2, 2}, -60};
};

winapi::TransitionRule rule(const SYSTEMTIME& date) {
  return {date.wYear, date.wMonth,  date.wDayOfWeek, date.wDay,
          date.wHour, date.wMinute, date.wSecond,    date.wMilliseconds};
}

// The zone is read again at every use: the machine's zone never changes, so this answers what
// the runtime would have read at its first _tzset.
RuntimeZone runtimeZone() {
  RuntimeZone zone;
  TIME_ZONE_INFORMATION info;
  if (GetTimeZoneInformation(&info) == TIME_ZONE_ID_INVALID) return zone;
  bool hasStandardDate = info.StandardDate.wMonth != 0;
  zone.timezone = (info.Bias + (hasStandardDate ? info.StandardBias : 0)) * kSecondsPerMinute;
  zone.daylight = info.DaylightDate.wMonth != 0 && info.DaylightBias != 0;
  zone.dstbias = zone.daylight ? (info.DaylightBias - info.StandardBias) * kSecondsPerMinute : 0;
  zone.rules = {info.Bias,         "", rule(info.StandardDate),
                info.StandardBias, "", rule(info.DaylightDate),
                info.DaylightBias};
  return zone;
}

std::tm breakDown(std::int64_t seconds, bool daylight) {
  winapi::CivilTime time = winapi::civilFromMilliseconds(seconds * 1000);
  std::tm result{};
  result.tm_sec = static_cast<int>(time.second);
  result.tm_min = static_cast<int>(time.minute);
  result.tm_hour = static_cast<int>(time.hour);
  result.tm_mday = static_cast<int>(time.day);
  result.tm_mon = static_cast<int>(time.month) - 1;
  result.tm_year = time.year - 1900;
  result.tm_wday = static_cast<int>(time.dayOfWeek);
  result.tm_yday = static_cast<int>(winapi::daysFromCivil(time.year, time.month, time.day) -
                                    winapi::daysFromCivil(time.year, 1, 1));
  result.tm_isdst = daylight ? 1 : 0;
  return result;
}

}  // namespace

extern "C" __time64_t _time64(__time64_t* destTime) {
  using namespace winapi;
  if (auto failed = injected<__time64_t>("_time64", Reports::ByReturnValue)) return *failed;
  std::int64_t milliseconds = currentMachine().now().time_since_epoch().count();
  __time64_t seconds = milliseconds / 1000 - (milliseconds % 1000 < 0 ? 1 : 0);
  if (destTime) *destTime = seconds;
  return seconds;
}

extern "C" void _tzset() {
  // Nothing to refresh: every reader derives the zone from the machine (runtimeZone()).
}

extern "C" errno_t _get_timezone(long* seconds) {
  using namespace winapi;
  if (auto failed = injected<errno_t>("_get_timezone", Reports::ByReturnValue)) return *failed;
  if (!seconds) return EINVAL;
  *seconds = runtimeZone().timezone;
  return 0;
}

extern "C" errno_t _get_daylight(int* hours) {
  using namespace winapi;
  if (auto failed = injected<errno_t>("_get_daylight", Reports::ByReturnValue)) return *failed;
  if (!hours) return EINVAL;
  *hours = runtimeZone().daylight;
  return 0;
}

extern "C" struct tm* _localtime64(const __time64_t* sourceTime) {
  using namespace winapi;
  if (auto failed = injected<std::tm*>("_localtime64", Reports::ByReturnValue)) return *failed;
  if (!sourceTime || *sourceTime < 0 || *sourceTime > kLastTime64) {
    errno = EINVAL;
    return nullptr;
  }
  RuntimeZone zone = runtimeZone();
  bool daylight =
      zone.daylight && zoneStateAt(zone.rules, *sourceTime * 1000) == ZoneState::Daylight;
  // The runtime's buffer, one per thread.
  thread_local std::tm result;
  result = breakDown(*sourceTime - zone.timezone - (daylight ? zone.dstbias : 0), daylight);
  return &result;
}
