#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/windows.h"

namespace {

const char* const kMachine = R"({"computerName": "WKS-É42",
    "system": {"windowsDirectory": "C:\\Windows", "systemDirectory": "C:\\Windows\\system32"}})";

TEST(SystemInfo, GetComputerNameAReportsTheSizeItNeeds) {
  CurrentMachine machine(nlohmann::json::parse(kMachine));
  const std::string name =
      "WKS-\xC9"
      "42";  // in code page 1252
  char buffer[16];
  std::memset(buffer, '#', sizeof buffer);

  DWORD size = static_cast<DWORD>(name.size());
  EXPECT_FALSE(GetComputerNameA(buffer, &size));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
  EXPECT_EQ(size, name.size() + 1);
  EXPECT_EQ(buffer[0], '#');

  size = 0;
  EXPECT_FALSE(GetComputerNameA(nullptr, &size));
  EXPECT_EQ(size, name.size() + 1);

  size = static_cast<DWORD>(name.size() + 1);
  EXPECT_TRUE(GetComputerNameA(buffer, &size));
  EXPECT_EQ(size, name.size());
  EXPECT_EQ(std::string(buffer), name);
  EXPECT_EQ(buffer[name.size() + 1], '#');

  EXPECT_FALSE(GetComputerNameA(buffer, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(SystemInfo, DirectoriesFollowTheBufferRules) {
  CurrentMachine machine(nlohmann::json::parse(kMachine));
  const std::pair<UINT (*)(LPSTR, UINT), std::string> cases[] = {
      {GetSystemDirectoryA, "C:\\Windows\\system32"},
      {GetSystemWindowsDirectoryA, "C:\\Windows"},
  };
  for (const auto& [function, directory] : cases) {
    const UINT length = static_cast<UINT>(directory.size());
    char buffer[MAX_PATH];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(function(nullptr, 0), length + 1);
    EXPECT_EQ(function(buffer, length), length + 1) << directory;
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(function(buffer, length + 1), length);
    EXPECT_EQ(std::string(buffer), directory);
    EXPECT_EQ(buffer[length + 1], '#');
  }
}

}  // namespace
