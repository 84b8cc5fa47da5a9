#include "frame/narrow_text.h"

#include <cstring>
#include <vector>

namespace installedapps_col {

std::string narrowString(const WCHAR* text, int length) {
  if (!text) return std::string();
  const int size = WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
  if (size <= 0) return std::string();
  std::vector<char> buffer(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, text, length, buffer.data(), size, nullptr, nullptr);
  return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

}  // namespace installedapps_col
