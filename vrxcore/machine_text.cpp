#include "vrxcore/machine_text.h"

#include <windows.h>

#include <algorithm>
#include <vector>

namespace NZARVEK20 {

std::string machineTextToUtf8(const std::string& text) {
  // Every ANSI code page keeps ASCII as it is.
  if (std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; })) return text;
  // One pass each way into buffers of the largest size: a byte is at most one wide character,
  // and a wide character at most three bytes of UTF-8.
  const int length = static_cast<int>(text.size());
  std::vector<WCHAR> wide(text.size());
  const int wideLength = MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length);
  if (wideLength <= 0) return text;
  std::string utf8(static_cast<size_t>(wideLength) * 3, '\0');
  const int utf8Length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, &utf8[0],
                                             static_cast<int>(utf8.size()), nullptr, nullptr);
  if (utf8Length <= 0) return text;
  utf8.resize(static_cast<size_t>(utf8Length));
  return utf8;
}

}  // namespace NZARVEK20
