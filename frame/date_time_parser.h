// Turns the date shapes of the system's sources into CIM date-times, and
// decides which text is no date at all.
#pragma once

#include <string>

#include "frame/log_message.h"
#include "host/cim_datetime.h"

namespace installedapps_col {

class DateTimeParser {
 public:
  explicit DateTimeParser(LogMessage* logger) : logger(logger) {}
  virtual ~DateTimeParser() {}

  // Eight digits (yyyymmdd), month/day/year with '/' or '-', or seconds
  // since 1970; null for text that is no date.
  NZARVEK20::TCIMDateTime parseDateTime(std::string text);
  // Seconds since 1970-01-01 00:00 UTC as a local timestamp.
  NZARVEK20::TCIMDateTime dateFromSeconds(unsigned int seconds);
  // A duration in seconds as a CIM interval.
  NZARVEK20::TCIMDateTime intervalFromSeconds(unsigned int seconds);

 private:
  NZARVEK20::TCIMDateTime parseCompact(const std::string& text);
  NZARVEK20::TCIMDateTime parseParts(const std::vector<std::string>& parts);

  LogMessage* logger;
};

}  // namespace installedapps_col
