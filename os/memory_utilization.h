// The memory figures of the operating system: load, physical, paging-file
// and virtual memory, in KiB and 64 bits wide.
#pragma once

#include "frame/log_message.h"
#include "frame/types.h"

namespace installedapps_col {

class MemoryUtilization {
 public:
  MemoryUtilization() : logger(LogMessage::getInstance()) {}
  virtual ~MemoryUtilization() {}

  // Empty when the system doesn't report its memory.
  PropertyMap getMemoryProperties();

 private:
  LogMessage* logger;
};

}  // namespace installedapps_col
