#include <windows.h>

#include "vrxcore/shipped_files.h"

namespace NZARVEK20 {

std::string ProgramDirectory() {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
  if (length == 0 || length == sizeof path) return ".\\";
  const std::string program(path, length);
  return program.substr(0, program.find_last_of("\\/") + 1);
}

}  // namespace NZARVEK20
