#include "os/time_zone_info.h"

#include "os/os_info.h"
#include "os/os_time_info.h"

namespace installedapps_col {

using namespace NZARVEK20;

int TTimeZoneinfo::getCIMInstances() {
  try {
    buildCIMInstance(OSTimeInfo().getTimeZoneProperties());
    return 1;
  } catch (const TVRXException& e) {
    logger->logDebug(instanceErrorText(e));
    return 0;
  }
}

}  // namespace installedapps_col
