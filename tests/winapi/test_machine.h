// Machines made by the tests: a temporary machine directory, and a machine made current for
// the length of a test.
#ifndef VRX_TESTS_WINAPI_TEST_MACHINE_H
#define VRX_TESTS_WINAPI_TEST_MACHINE_H

#include <nlohmann/json.hpp>
#include <string>

// A fresh directory under the system's temporary folder, removed with everything in it.
class TempDirectory {
 public:
  TempDirectory();
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  const std::string& path() const { return path_; }
  // Writes `content` to path()/relative, making the folders on the way.
  void write(const std::string& relative, const std::string& content) const;
  void makeDirectory(const std::string& relative) const;

 private:
  std::string path_;
};

// Makes the machine of `description` current; the empty default machine comes back afterwards.
class CurrentMachine {
 public:
  explicit CurrentMachine(const nlohmann::json& description, const std::string& directory = "");
  ~CurrentMachine();
  CurrentMachine(const CurrentMachine&) = delete;
  CurrentMachine& operator=(const CurrentMachine&) = delete;
};

#endif
