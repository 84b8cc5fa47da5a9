#include "frame/date_time_parser.h"

#include <cctype>
#include <sstream>

#include "frame/cim_value_builder.h"
#include "frame/frame_texts.h"
#include "frame/platform.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

// Seconds west of UTC and whether the zone has a daylight rule, as the C
// runtime has them; a failed read keeps the runtime's defaults.
struct RuntimeZone {
  long secondsWest = 28800;
  int hasDaylight = 1;

  RuntimeZone() {
    _get_timezone(&secondsWest);
    _get_daylight(&hasDaylight);
  }
  // Minutes east of UTC; the daylight hour counts all year.
  short offset() const { return static_cast<short>((hasDaylight ? 60 : 0) - secondsWest / 60); }
};

unsigned short readNumber(const std::string& text) {
  std::istringstream stream(text);
  unsigned short number = 0;
  stream >> number;
  return number;
}

}  // namespace

TCIMDateTime DateTimeParser::parseDateTime(std::string text) {
  try {
    if (text.empty()) {
      logger->logTrace(std::string(constants::kDatePrefix) + constants::kDateGeneratedIncorrectly);
      return TCIMDateTime();
    }
    std::vector<std::string> parts = splitString(text, '/');
    if (parts.size() == 1) {
      parts = splitString(text, '-');
      if (parts.size() == 1) return parseCompact(text);
    }
    return parseParts(parts);
  } catch (const TVRXException& e) {
    if (e.GetStatusCode() != VRX_INVALID_DATETIME) throw TVRXException(e);
    logger->logDebug(std::string(constants::kDatePrefix) + constants::kUnknownDateFormat + text);
    return TCIMDateTime();
  }
}

TCIMDateTime DateTimeParser::parseCompact(const std::string& text) {
  for (char c : text)
    if (std::isalpha(static_cast<unsigned char>(c))) return TCIMDateTime();
  try {
    return TCIMDateTime(text + constants::kCompactDateTail);
  } catch (const TVRXException& e) {
    if (e.GetStatusCode() != VRX_INVALID_DATETIME) throw TVRXException(e);
  }
  std::istringstream stream(text);
  unsigned int seconds = 0;
  stream >> seconds;
  return dateFromSeconds(seconds);
}

TCIMDateTime DateTimeParser::parseParts(const std::vector<std::string>& parts) {
  if (parts.size() < 3) return TCIMDateTime();
  const unsigned short month = readNumber(parts[0]), day = readNumber(parts[1]),
                       year = readNumber(parts[2]);
  return TCIMDateTime(year, month, day, 0, 0, 0, 0, RuntimeZone().offset());
}

TCIMDateTime DateTimeParser::dateFromSeconds(unsigned int seconds) {
  logger->logDebug(constants::kDateFromSeconds);
  _tzset();
  const RuntimeZone zone;
  const __time64_t time =
      seconds != 0 ? static_cast<__time64_t>(seconds)
                   : static_cast<__time64_t>(static_cast<unsigned int>(zone.secondsWest));
  const struct tm* local = _localtime64(&time);
  if (!local) {
    logger->logDebug(constants::kDateGeneratedIncorrectly);
    return TCIMDateTime();
  }
  TCIMDateTime result;
  result.Set(static_cast<unsigned short>(1900 + local->tm_year),
             static_cast<unsigned short>(local->tm_mon + 1),
             static_cast<unsigned int>(local->tm_mday), static_cast<unsigned short>(local->tm_hour),
             static_cast<unsigned short>(local->tm_min), static_cast<unsigned short>(local->tm_sec),
             0, zone.offset());
  logger->logTrace(constants::kDateParsed);
  return result;
}

TCIMDateTime DateTimeParser::intervalFromSeconds(unsigned int seconds) {
  return TCIMDateTime(seconds / 86400, static_cast<unsigned short>(seconds / 3600 % 24),
                      static_cast<unsigned short>(seconds / 60 % 60),
                      static_cast<unsigned short>(seconds % 60), 0);
}

}  // namespace installedapps_col
