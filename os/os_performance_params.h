// The counts and commit figures of the operating system, from the system's
// performance information; commit and memory figures in KiB, the page size
// in bytes, each 32 bits wide.
#pragma once

#include "frame/log_message.h"
#include "frame/types.h"

namespace installedapps_col {

class OSPerformanceParams {
 public:
  OSPerformanceParams() : logger(LogMessage::getInstance()) {}
  virtual ~OSPerformanceParams() {}

  // Empty before version 5.1 and whenever the information can't be had.
  PropertyMap getPerformanceProperties();

 private:
  LogMessage* logger;
};

}  // namespace installedapps_col
