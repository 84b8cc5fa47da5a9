#include "os/os_time_info.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "frame/date_time_parser.h"
#include "frame/narrow_text.h"
#include "host/os_specific.h"
#include "os/os_names.h"
#include "os/pdh_status_text.h"
#include "os/time_zone_info.h"

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <pdh.h>
#include <pdhmsg.h>
// clang-format on

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr DWORD kPathBuffer = 2048;
// The counter information and the texts it points to.
constexpr DWORD kCounterInfoSize = 2048 + 112;
// The value before any read: -1 in its low 32 bits.
constexpr LONGLONG kNoValue = 0xFFFFFFFFLL;
constexpr LONG kDaylightHour = -60;

// The format that suits the counter's size and kind.
DWORD formatOf(DWORD counterType) {
  switch (counterType & 0x300) {
    case 0x100:
      return PDH_FMT_LARGE;
    case 0x300:
      return PDH_FMT_DOUBLE;
    default:
      return PDH_FMT_LONG;
  }
}

// The full path of "System Up Time" of "System" on this machine.
std::string makeCounterPath(OSTimeInfo& reporter) {
  std::string object = constants::kSystemCounterObject;
  std::string counter = constants::kSystemUpTimeCounter;
  PDH_COUNTER_PATH_ELEMENTS_A elements = {};
  elements.szObjectName = &object[0];
  elements.szCounterName = &counter[0];
  DWORD size = kPathBuffer;
  std::vector<char> path(size + 1, '\0');
  unsigned int status = PdhMakeCounterPathA(&elements, path.data(), &size, 0);
  reporter.reportPdhStatus(status);
  if (status == PDH_MORE_DATA) {
    path.assign(size + 1, '\0');
    status = PdhMakeCounterPathA(&elements, path.data(), &size, 0);
    reporter.reportPdhStatus(status);
  }
  return std::string(path.data());
}

// One sample of an added counter into `value`, in the format its type asks.
void sampleCounter(OSTimeInfo& reporter, PDH_HQUERY query, PDH_HCOUNTER counter,
                   PDH_FMT_COUNTERVALUE& value) {
  std::vector<LONGLONG> block(kCounterInfoSize / sizeof(LONGLONG), 0);
  auto* info = reinterpret_cast<PDH_COUNTER_INFO_A*>(block.data());
  info->dwLength = kCounterInfoSize;
  DWORD size = info->dwLength;
  reporter.reportPdhStatus(PdhGetCounterInfoA(counter, FALSE, &size, info));
  DWORD type = info->dwType;
  const unsigned int status = PdhCollectQueryData(query);
  reporter.reportPdhStatus(status);
  if (status != ERROR_SUCCESS) return;
  reporter.reportPdhStatus(PdhGetFormattedCounterValue(counter, formatOf(type), &type, &value));
}

// Seconds since the system started; -1 when no value could be read.
std::int32_t readUpTimeSeconds(OSTimeInfo& reporter) {
  const std::string path = makeCounterPath(reporter);
  PDH_HQUERY query = nullptr;
  PdhOpenQueryA(nullptr, 0, &query);
  PDH_HCOUNTER counter = nullptr;
  PDH_FMT_COUNTERVALUE value = {};
  value.largeValue = kNoValue;
  const unsigned int status = PdhAddCounterA(query, path.c_str(), 0, &counter);
  reporter.reportPdhStatus(status);
  if (status == ERROR_SUCCESS) sampleCounter(reporter, query, counter, value);
  reporter.reportPdhStatus(PdhRemoveCounter(counter));
  // The query is ours to close; its status tells nothing about the reading.
  PdhCloseQuery(query);
  std::int32_t seconds;
  std::memcpy(&seconds, &value.largeValue, sizeof seconds);
  return seconds;
}

TCIMValue localTimestamp(__time64_t time, short utcOffset) {
  const struct tm* local = _localtime64(&time);
  if (!local) return TCIMValue();
  TCIMDateTime timestamp;
  timestamp.Set(
      static_cast<unsigned short>(local->tm_year + 1900),
      static_cast<unsigned short>(local->tm_mon + 1), static_cast<unsigned int>(local->tm_mday),
      static_cast<unsigned short>(local->tm_hour), static_cast<unsigned short>(local->tm_min),
      static_cast<unsigned short>(local->tm_sec), 0, utcOffset);
  return TCIMValue(timestamp);
}

// A zone name of the record, converted up to its terminator.
std::string narrowName(const WCHAR (&name)[32]) {
  int length = 0;
  while (length < 32 && name[length] != 0) ++length;
  return length == 0 ? std::string() : narrowString(name, length);
}

}  // namespace

PropertyMap OSTimeInfo::getTimeProperties() {
  PropertyMap values;
  values[constants::kLastBootUpTime] = readUpTime(true);
  values[constants::kUpTime] = readUpTime(false);
  return values;
}

TCIMValue OSTimeInfo::readUpTime(bool asBootTime) {
  const std::int32_t seconds = readUpTimeSeconds(*this);
  const __time64_t boot = _time64(nullptr) - seconds;
  const short offset = getUtcOffsetMinutes();
  if (asBootTime) return localTimestamp(boot, offset);
  // An interval can't be negative: no value read shows as no time elapsed.
  const unsigned int elapsed = seconds < 0 ? 0 : static_cast<unsigned int>(seconds);
  return TCIMValue(DateTimeParser(logger).intervalFromSeconds(elapsed));
}

void OSTimeInfo::reportPdhStatus(unsigned int status) { logger->logTrace(pdhStatusText(status)); }

short OSTimeInfo::getUtcOffsetMinutes() {
  TIME_ZONE_INFORMATION zone = {};
  switch (GetTimeZoneInformation(&zone)) {
    case TIME_ZONE_ID_STANDARD:
      return static_cast<short>(-zone.Bias);
    case TIME_ZONE_ID_DAYLIGHT:
      return static_cast<short>(-(zone.Bias + zone.DaylightBias));
    default:
      return 0;
  }
}

void OSTimeInfo::fillTimeZone(TTimeZone& zone) {
  TIME_ZONE_INFORMATION info = {};
  GetTimeZoneInformation(&info);
  // The bias tells the kind of zone, whatever time of the year it is.
  zone.daylightSaving = info.DaylightBias == 0 ? 1 : info.DaylightBias == kDaylightHour ? 2 : 0;
  zone.timeZoneName = narrowName(zone.daylightSaving == 2 ? info.DaylightName : info.StandardName);
  zone.localDateTime = TOSSpecific::GetLocalTime();
  SYSTEMTIME utc = {};
  GetSystemTime(&utc);
  zone.gmtDateTime = TCIMDateTime(utc.wYear, utc.wMonth, utc.wDay, utc.wHour, utc.wMinute,
                                  utc.wSecond, utc.wMilliseconds * 1000u, 0);
}

PropertyMap OSTimeInfo::getTimeZoneProperties() {
  auto zone = std::make_unique<TTimeZone>();
  fillTimeZone(*zone);
  return {{constants::kTheTimeZone, TCIMValue(zone->timeZoneName)},
          {constants::kLocalDateTime, TCIMValue(zone->localDateTime)},
          {constants::kDaylightSaving, TCIMValue(zone->daylightSaving)},
          {constants::kGMTDateTime, TCIMValue(zone->gmtDateTime)}};
}

}  // namespace installedapps_col
