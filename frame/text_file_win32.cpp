#include <fstream>

#include "frame/text_file.h"

namespace installedapps_col {

std::unique_ptr<std::istream> openTextFile(const std::string& path) {
  auto file = std::make_unique<std::ifstream>(path);
  if (!file->is_open()) return nullptr;
  return file;
}

}  // namespace installedapps_col
