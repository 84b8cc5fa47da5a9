// Any bytes as CIM date-time text, or as a date found in the registry, give a
// date-time or a TVRXException and nothing else. A text that parses prints
// back as the same 25 characters, so a parsed value never loses a part.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "frame/date_time_parser.h"
#include "host/cim_datetime.h"
#include "host/status.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const NZARVEK20::TCIMDateTime parsed(text);
    if (parsed.ToString() != text) std::abort();
  } catch (const NZARVEK20::TVRXException&) {
  }
  installedapps_col::DateTimeParser registryDates(installedapps_col::LogMessage::getInstance());
  try {
    const NZARVEK20::TCIMDateTime date = registryDates.parseDateTime(text);
    if (!date.IsNull() && NZARVEK20::TCIMDateTime(date.ToString()) != date) std::abort();
  } catch (const NZARVEK20::TVRXException&) {
  }
  return 0;
}
