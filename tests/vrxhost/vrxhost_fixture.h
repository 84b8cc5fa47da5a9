// Runs vrxhost as users do, in a fresh scratch directory per test.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

struct Result {
  int status;
  std::string out;
  std::string err;
};

inline std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

inline void writeFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

class Vrxhost : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() /
          ("vrxhost_test_" + std::to_string(::getpid()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
  }
  void TearDown() override { fs::remove_all(dir); }

  Result run(const std::string& arguments) {
    const std::string command = std::string("env -u VRX_EXCLUDEAPPS ") + VRXHOST + " " + arguments +
                                " >" + (dir / "stdout").string() + " 2>" +
                                (dir / "stderr").string();
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(dir / "stdout"),
            readFile(dir / "stderr")};
  }

  fs::path dir;
};
