#include "test_machine.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "winapi/machine/machine.h"

namespace fs = std::filesystem;

TempDirectory::TempDirectory() {
  std::string pattern = (fs::temp_directory_path() / "vrx-winapi-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary directory");
  path_ = pattern;
}

TempDirectory::~TempDirectory() {
  std::error_code error;
  fs::remove_all(path_, error);
}

void TempDirectory::write(const std::string& relative, const std::string& content) const {
  fs::path file = fs::path(path_) / relative;
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}

void TempDirectory::makeDirectory(const std::string& relative) const {
  fs::create_directories(fs::path(path_) / relative);
}

CurrentMachine::CurrentMachine(const nlohmann::json& description, const std::string& directory) {
  winapi::setCurrentMachine(winapi::Machine::fromDescription(description, directory));
}

CurrentMachine::~CurrentMachine() { winapi::setCurrentMachine(nullptr); }
