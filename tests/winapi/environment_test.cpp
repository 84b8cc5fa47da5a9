#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/c_runtime.h"
#include "winapi/include/windows.h"

namespace {

const char* const kMachine = R"({"environment": {
    "USERPROFILE": "C:\\Users\\José", "UserName": "alice", "EMPTY": ""}})";

class Environment : public ::testing::Test {
 protected:
  CurrentMachine machine{nlohmann::json::parse(kMachine)};
  char buffer[32];
  void SetUp() override { std::memset(buffer, '#', sizeof buffer); }
};

TEST_F(Environment, GetEnvironmentVariableAFollowsTheBufferRules) {
  const std::string profile = "C:\\Users\\Jos\xE9";  // the ANSI (1252) text
  const DWORD length = static_cast<DWORD>(profile.size());

  EXPECT_EQ(GetEnvironmentVariableA("USERPROFILE", nullptr, 0), length + 1);
  // One byte short of the terminator: the size needed, and the buffer untouched.
  EXPECT_EQ(GetEnvironmentVariableA("USERPROFILE", buffer, length), length + 1);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(GetEnvironmentVariableA("USERPROFILE", buffer, length + 1), length);
  EXPECT_EQ(std::string(buffer), profile);
  EXPECT_EQ(buffer[length + 1], '#');

  SetLastError(1234);
  EXPECT_EQ(GetEnvironmentVariableA("EMPTY", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_EQ(buffer[0], '\0');

  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(GetEnvironmentVariableA("HOMEDRIVE", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
  EXPECT_EQ(buffer[0], '#');

  EXPECT_EQ(GetEnvironmentVariableA(nullptr, buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(Environment, NamesIgnoreCase) {
  EXPECT_EQ(GetEnvironmentVariableA("username", buffer, sizeof buffer), 5u);
  EXPECT_STREQ(buffer, "alice");
  EXPECT_EQ(GetEnvironmentVariableA("USERNAME", buffer, sizeof buffer), 5u);
}

TEST_F(Environment, GetenvReadsTheMachine) {
  // vrx_getenv is the machine's getenv; the Linux process has its own HOME, the machine none.
  EXPECT_EQ(vrx_getenv("HOME"), nullptr);
  ASSERT_NE(vrx_getenv("username"), nullptr);
  EXPECT_STREQ(vrx_getenv("USERNAME"), "alice");
  EXPECT_STREQ(vrx_getenv("UserProfile"), "C:\\Users\\Jos\xE9");
  // The same storage until the environment changes.
  EXPECT_EQ(vrx_getenv("USERNAME"), vrx_getenv("username"));
  EXPECT_EQ(vrx_getenv(nullptr), nullptr);
}

}  // namespace
