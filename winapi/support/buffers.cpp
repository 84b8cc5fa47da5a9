#include "winapi/support/buffers.h"

#include <cstring>

namespace winapi {

std::size_t copyOrMeasure(const std::string& text, char* buffer, std::size_t size) {
  if (!buffer || size <= text.size()) return text.size() + 1;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return text.size();
}

}  // namespace winapi
