#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/windows.h"

namespace {

TEST(EnvironmentExpansion, KnownNamesAreReplacedAndTheRestKept) {
  CurrentMachine machine(nlohmann::json::parse(
      R"({"environment": {"SystemRoot": "C:\\Windows", "USERPROFILE": "C:\\Users\\José"}})"));
  const char* source = "%systemroot%\\x;%UserProfile%;%unknown%;%%;50%";
  const std::string expected = "C:\\Windows\\x;C:\\Users\\Jos\xE9;%unknown%;%%;50%";
  const DWORD size = static_cast<DWORD>(expected.size() + 1);
  char buffer[64];
  std::memset(buffer, '#', sizeof buffer);

  EXPECT_EQ(ExpandEnvironmentStringsA(source, nullptr, 0), size);
  EXPECT_EQ(ExpandEnvironmentStringsA(source, buffer, size - 1), size);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(ExpandEnvironmentStringsA(source, buffer, size), size);
  EXPECT_EQ(std::string(buffer), expected);
  EXPECT_EQ(buffer[size], '#');

  // An unknown %A% stays whole, and the scan goes on after its closing '%'.
  EXPECT_EQ(ExpandEnvironmentStringsA("%A%B%SystemRoot%", buffer, sizeof buffer), 15u);
  EXPECT_STREQ(buffer, "%A%BC:\\Windows");

  EXPECT_EQ(ExpandEnvironmentStringsA(nullptr, buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
