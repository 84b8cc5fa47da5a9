#include <unistd.h>

#include <climits>

#include "vrxcore/shipped_files.h"

namespace NZARVEK20 {

std::string ProgramDirectory() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  if (length <= 0) return "./";
  const std::string program(path, static_cast<size_t>(length));
  return program.substr(0, program.rfind('/') + 1);
}

}  // namespace NZARVEK20
