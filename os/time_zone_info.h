// The time zone of the machine: the plain record of its facts, and the
// collector of its one QELTO_TimeZone instance.
#pragma once

#include <string>

#include "frame/get_info.h"
#include "host/cim_datetime.h"

namespace installedapps_col {

class TTimeZone {
 public:
  virtual ~TTimeZone() {}

  // 1 for a zone without daylight saving, 2 for one whose daylight bias
  // is an hour, 0 otherwise.
  unsigned char daylightSaving = 0;
  std::string timeZoneName;  // ANSI code page
  NZARVEK20::TCIMDateTime localDateTime;
  NZARVEK20::TCIMDateTime gmtDateTime;
};

class TTimeZoneinfo : public GetInfo {
 public:
  using GetInfo::GetInfo;
  // 1 when the instance was committed, 0 after an error of the host.
  int getCIMInstances() override;
};

}  // namespace installedapps_col
