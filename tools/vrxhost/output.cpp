#include "tools/vrxhost/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>

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

}  // namespace vrxhost
