#include "host/os_specific.h"

#include <windows.h>

namespace NZARVEK20 {

std::string TOSSpecific::GetMachineName() {
  char name[256] = {0};
  DWORD size = sizeof name;
  return GetComputerNameA(name, &size) ? std::string(name, size) : std::string();
}

TCIMDateTime TOSSpecific::GetLocalTime() {
  SYSTEMTIME now;
  ::GetLocalTime(&now);
  TIME_ZONE_INFORMATION zone;
  const DWORD which = GetTimeZoneInformation(&zone);
  LONG bias = which == TIME_ZONE_ID_INVALID ? 0 : zone.Bias;
  if (which == TIME_ZONE_ID_STANDARD) bias += zone.StandardBias;
  if (which == TIME_ZONE_ID_DAYLIGHT) bias += zone.DaylightBias;
  return TCIMDateTime(now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond,
                      now.wMilliseconds * 1000u, static_cast<short>(-bias));
}

}  // namespace NZARVEK20
