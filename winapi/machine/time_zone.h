// Whether a time zone keeps standard or daylight time at an instant, by its yearly rule, and
// the bias that follows; shared by GetTimeZoneInformation, GetLocalTime and the C runtime's
// local time.
#ifndef VRX_WINAPI_TIME_ZONE_H
#define VRX_WINAPI_TIME_ZONE_H

#include <cstdint>

#include "winapi/machine/machine.h"

namespace winapi {

enum class ZoneState { NoDaylightRule, Standard, Daylight };

// `utcMilliseconds` counts from 1970-01-01 UTC.
ZoneState zoneStateAt(const TimeZone& zone, std::int64_t utcMilliseconds);
// Minutes to add to local time to get UTC at that instant.
std::int64_t biasAt(const TimeZone& zone, std::int64_t utcMilliseconds);

}  // namespace winapi

#endif
