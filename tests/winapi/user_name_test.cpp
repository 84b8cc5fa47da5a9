#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/windows.h"

namespace {

TEST(GetUserNameA, ReportsTheSizeWithItsTerminator) {
  const std::pair<unsigned, std::string> cases[] = {
      {1252, "Jos\xE9"},
      {65001, "Jos\xC3\xA9"},
  };
  for (const auto& [codePage, name] : cases) {
    CurrentMachine machine(nlohmann::json{{"userName", "Jos\u00e9"}, {"ansiCodePage", codePage}});
    const DWORD needed = static_cast<DWORD>(name.size() + 1);
    char buffer[16];
    std::memset(buffer, '#', sizeof buffer);

    DWORD size = 0;
    EXPECT_FALSE(GetUserNameA(nullptr, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(size, needed) << codePage;

    size = needed - 1;
    EXPECT_FALSE(GetUserNameA(buffer, &size));
    EXPECT_EQ(size, needed);
    EXPECT_EQ(buffer[0], '#');

    size = needed;
    ASSERT_TRUE(GetUserNameA(buffer, &size));
    EXPECT_EQ(size, needed);
    EXPECT_EQ(std::string(buffer), name);
    EXPECT_EQ(buffer[needed], '#');

    size = sizeof buffer;
    ASSERT_TRUE(GetUserNameA(buffer, &size));
    EXPECT_EQ(size, needed);
  }
}

TEST(GetUserNameA, FailsWithoutAUserAndAsInjected) {
  char buffer[16] = "#";
  DWORD size = sizeof buffer;
  {
    CurrentMachine machine(nlohmann::json::object());
    EXPECT_FALSE(GetUserNameA(buffer, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NONE_MAPPED));
    EXPECT_FALSE(GetUserNameA(buffer, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  }
  CurrentMachine machine(nlohmann::json::parse(
      R"({"userName": "alice", "fail": {"GetUserNameA": {"return": 0, "lastError": 5}}})"));
  EXPECT_FALSE(GetUserNameA(buffer, &size));
  EXPECT_EQ(GetLastError(), 5u);
  EXPECT_EQ(size, sizeof buffer);
  EXPECT_EQ(buffer[0], '#');
}

}  // namespace
