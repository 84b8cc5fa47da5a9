// The time facts of the operating system (when it started, how long it has
// run, from the "System Up Time" counter) and the facts of its time zone.
#pragma once

#include "frame/log_message.h"
#include "frame/types.h"
#include "host/cim_value.h"

namespace installedapps_col {

class TTimeZone;

class OSTimeInfo {
 public:
  OSTimeInfo() : logger(LogMessage::getInstance()) {}
  virtual ~OSTimeInfo() {}

  // LastBootUpTime and UpTime, each from a counter read of its own.
  PropertyMap getTimeProperties();
  // TheTimeZone, LocalDateTime, DaylightSaving and GMTDateTime.
  PropertyMap getTimeZoneProperties();

  // The local time of the start with the zone's offset, or the time since
  // then as an interval. A counter that can't be read counts as -1 s.
  NZARVEK20::TCIMValue readUpTime(bool asBootTime);
  // Logs the text of a counter call's status; the status decides nothing
  // beyond the call that gave it.
  void reportPdhStatus(unsigned int status);
  // Minutes east of UTC now, by the system's zone; 0 when it has none.
  short getUtcOffsetMinutes();
  void fillTimeZone(TTimeZone& zone);

 private:
  LogMessage* logger;
};

}  // namespace installedapps_col
