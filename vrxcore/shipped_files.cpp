#include "vrxcore/shipped_files.h"

#include <filesystem>

namespace NZARVEK20 {

std::string ShippedFile(const std::string& installedFolder, const std::string& name) {
  const std::string beside = ProgramDirectory() + name;
  std::error_code error;
  if (std::filesystem::exists(beside, error)) return beside;
  return ProgramDirectory() + "../" + installedFolder + "/" + name;
}

}  // namespace NZARVEK20
