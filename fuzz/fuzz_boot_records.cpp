// Any bytes as a boot.ini or as the data of a boot configuration element give
// lines or text within the bytes given: no crash, no read beyond the data.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "frame/log_message.h"
#include "os/boot_records.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::istringstream file(bytes);
  installedapps_col::readBootFileLines(file, *installedapps_col::LogMessage::getInstance());
  if (size == 0) return 0;
  // The element's data as the registry hands it over: exactly `size` bytes.
  const std::vector<char> element(bytes.begin(), bytes.end());
  for (DWORD type : {DWORD{REG_SZ}, DWORD{REG_MULTI_SZ}})
    installedapps_col::bcdElementText(type, element.data(), static_cast<DWORD>(element.size()));
  return 0;
}
