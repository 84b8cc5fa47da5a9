// The machine's clock and time zone: GetSystemTime, GetLocalTime, GetTimeZoneInformation.
#include <algorithm>
#include <chrono>
#include <cstring>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/time_zone.h"
#include "winapi/support/calendar.h"
#include "winapi/support/code_pages.h"

namespace {

std::int64_t nowMilliseconds() { return winapi::currentMachine().now().time_since_epoch().count(); }

SYSTEMTIME systemTime(std::int64_t milliseconds) {
  winapi::CivilTime time = winapi::civilFromMilliseconds(milliseconds);
  return {static_cast<WORD>(time.year),      static_cast<WORD>(time.month),
          static_cast<WORD>(time.dayOfWeek), static_cast<WORD>(time.day),
          static_cast<WORD>(time.hour),      static_cast<WORD>(time.minute),
          static_cast<WORD>(time.second),    static_cast<WORD>(time.millisecond)};
}

SYSTEMTIME systemTime(const winapi::TransitionRule& rule) {
  return {rule.year, rule.month,  rule.dayOfWeek, rule.day,
          rule.hour, rule.minute, rule.second,    rule.milliseconds};
}

// The name cut to 31 characters, to fit WCHAR[32] with its terminator.
void copyName(const std::string& utf8, WCHAR (&name)[32]) {
  std::wstring wide = winapi::utf8ToWide(utf8);
  std::size_t length = std::min<std::size_t>(wide.size(), 31);
  std::fill(std::begin(name), std::end(name), L'\0');
  std::copy_n(wide.begin(), length, name);
}

const DWORD kZoneIds[] = {TIME_ZONE_ID_UNKNOWN, TIME_ZONE_ID_STANDARD, TIME_ZONE_ID_DAYLIGHT};

}  // namespace

extern "C" void WINAPI GetSystemTime(LPSYSTEMTIME lpSystemTime) {
  if (lpSystemTime) *lpSystemTime = systemTime(nowMilliseconds());
}

extern "C" void WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime) {
  if (!lpSystemTime) return;
  std::int64_t now = nowMilliseconds();
  const auto& zone = winapi::currentMachine().timeZone();
  std::int64_t bias = zone ? winapi::biasAt(*zone, now) : 0;
  *lpSystemTime = systemTime(now - bias * 60000);
}

extern "C" DWORD WINAPI GetTimeZoneInformation(LPTIME_ZONE_INFORMATION lpTimeZoneInformation) {
  using namespace winapi;
  if (auto failed = injected<DWORD>("GetTimeZoneInformation", Reports::ThroughLastError))
    return *failed;
  if (!lpTimeZoneInformation) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return TIME_ZONE_ID_INVALID;
  }
  const auto& zone = currentMachine().timeZone();
  if (!zone) {
    // Windows reads the zone from the registry; a machine without one has no such key.
    SetLastError(ERROR_FILE_NOT_FOUND);
    return TIME_ZONE_ID_INVALID;
  }
  TIME_ZONE_INFORMATION& info = *lpTimeZoneInformation;
  info.Bias = zone->bias;
  copyName(zone->standardName, info.StandardName);
  info.StandardDate = systemTime(zone->standardDate);
  info.StandardBias = zone->standardBias;
  copyName(zone->daylightName, info.DaylightName);
  info.DaylightDate = systemTime(zone->daylightDate);
  info.DaylightBias = zone->daylightBias;
  return kZoneIds[static_cast<int>(zoneStateAt(*zone, nowMilliseconds()))];
}
