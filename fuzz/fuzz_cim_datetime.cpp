// Any bytes as CIM date-time text, or as a date found in the registry, give a
// date-time or a TVRXException and nothing else. A date-time prints as 25
// characters that read back as the same value (a zero offset may print with
// the other sign), so a parsed value never loses a part.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "frame/date_time_parser.h"
#include "host/cim_datetime.h"
#include "host/status.h"

namespace {

using NZARVEK20::TCIMDateTime;

// Outside any try: a printed text that does not read back escapes as a crash.
void expectReadsBack(const TCIMDateTime& value) {
  if (value.IsNull()) return;
  const std::string printed = value.ToString();
  if (printed.size() != 25 || TCIMDateTime(printed) != value) std::abort();
}

template <typename Parse>
std::optional<TCIMDateTime> parsedOrNothing(Parse parse) {
  try {
    return parse();
  } catch (const NZARVEK20::TVRXException&) {
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (auto cim = parsedOrNothing([&] { return TCIMDateTime(text); })) expectReadsBack(*cim);
  installedapps_col::DateTimeParser registryDates(installedapps_col::LogMessage::getInstance());
  if (auto date = parsedOrNothing([&] { return registryDates.parseDateTime(text); }))
    expectReadsBack(*date);
  return 0;
}
