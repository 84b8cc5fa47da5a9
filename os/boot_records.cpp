#include "os/boot_records.h"

#include <cstring>

#include "os/os_names.h"

namespace installedapps_col {

namespace {

constexpr std::streamsize kLineBuffer = 1024;
constexpr int kMaxReads = 150;
// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}", then its terminator.
constexpr DWORD kGuidLength = 38;

std::string textAt(const char* data, DWORD size, DWORD at) {
  return std::string(data + at, strnlen(data + at, size - at));
}

// The strings that start every 39 bytes; as many as 38-character pieces fit.
std::string joinedGuids(const char* data, DWORD size) {
  std::string text = textAt(data, size, 0);
  const DWORD count = size / kGuidLength;
  for (DWORD i = 1; i < count && i * (kGuidLength + 1) < size; ++i)
    text += textAt(data, size, i * (kGuidLength + 1));
  return text;
}

}  // namespace

std::vector<std::string> readBootFileLines(std::istream& file, LogMessage& logger) {
  std::vector<std::string> lines;
  char buffer[kLineBuffer];
  for (int read = 0; read < kMaxReads && !file.eof(); ++read) {
    logger.logDebug(constants::kBootIniPass);
    buffer[0] = '\0';
    // A line that doesn't fit sets the fail state; no read after it takes
    // anything, and none reaches the end of the file.
    file.getline(buffer, kLineBuffer);
    if (buffer[0] != '\0') lines.push_back(buffer);
  }
  return lines;
}

std::string bcdElementText(DWORD type, const char* data, DWORD size) {
  switch (type) {
    case REG_SZ:
      return textAt(data, size, 0);
    case REG_MULTI_SZ:
      return joinedGuids(data, size);
    default:
      return std::string();
  }
}

}  // namespace installedapps_col
