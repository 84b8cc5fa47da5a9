#include "tools/vrxhost/output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <vector>

#include "frame/platform.h"
#include "tools/vrxhost/platform.h"

namespace vrxhost {
namespace {

[[noreturn]] void cannotWrite(const std::string& path, const std::string& why) {
  throw std::runtime_error(path + ": cannot write the output: " + why);
}

void discard(std::ofstream& file, const std::string& temporary) {
  file.close();
  std::remove(temporary.c_str());
}

// Writes the temporary file; whatever goes wrong, it is removed again.
void writeTemporary(const std::string& path, const std::string& temporary,
                    const std::function<void(std::ostream&)>& write) {
  std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
  if (!file) cannotWrite(path, std::strerror(errno));
  try {
    write(file);
    file.flush();
  } catch (...) {
    discard(file, temporary);
    throw;
  }
  if (!file) {
    const std::string why = std::strerror(errno);
    discard(file, temporary);
    cannotWrite(path, why);
  }
}

}  // namespace

void writeOutput(const std::string& path, const std::function<void(std::ostream&)>& write) {
  if (path.empty() || path == "-") {
    write(std::cout);
    std::cout.flush();
    return;
  }
  // Beside the target, so that the rename stays on one file system.
  const std::string temporary = path + ".tmp";
  writeTemporary(path, temporary, write);
  if (!replaceFile(temporary, path)) {
    const std::string why = std::strerror(errno);
    std::remove(temporary.c_str());
    cannotWrite(path, why);
  }
}

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

}  // namespace vrxhost
