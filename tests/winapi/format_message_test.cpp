#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "winapi/include/windows.h"

namespace {

constexpr DWORD kSystem = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
const DWORD kNeutral = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);

TEST(FormatMessage, AllocatesTheTextForTheCaller) {
  LPSTR text = nullptr;
  DWORD length = FormatMessageA(kSystem | FORMAT_MESSAGE_ALLOCATE_BUFFER, nullptr, 5, kNeutral,
                                reinterpret_cast<LPSTR>(&text), 0, nullptr);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text), "Access is denied.\r\n");
  EXPECT_EQ(length, std::strlen(text));
  EXPECT_EQ(LocalFree(text), nullptr);
  // Freed once is freed: the handle is no longer valid.
  EXPECT_EQ(LocalFree(text), text);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  char stack[4];
  EXPECT_EQ(LocalFree(stack), stack);
  EXPECT_EQ(LocalFree(nullptr), nullptr);
}

TEST(FormatMessage, WritesIntoTheCallersBufferOnlyWhenItFits) {
  const std::string expected = "The specified module could not be found.\r\n";
  char buffer[64];
  std::memset(buffer, '#', sizeof buffer);
  const DWORD length = static_cast<DWORD>(expected.size());
  EXPECT_EQ(FormatMessageA(kSystem, nullptr, ERROR_MOD_NOT_FOUND, 0, buffer, length, nullptr), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(FormatMessageA(kSystem, nullptr, ERROR_MOD_NOT_FOUND, 0, buffer, length + 1, nullptr),
            length);
  EXPECT_EQ(std::string(buffer), expected);
  EXPECT_EQ(buffer[length + 1], '#');

  // FORMAT_MESSAGE_MAX_WIDTH_MASK drops the text's own line break.
  EXPECT_EQ(FormatMessageA(kSystem | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr, 0, 0, buffer,
                           sizeof buffer, nullptr),
            37u);
  EXPECT_EQ(std::string(buffer), "The operation completed successfully.");
}

TEST(FormatMessage, RefusesWhatItCannotGive) {
  struct Case {
    DWORD flags, id, language;
    bool buffer;
    DWORD error;
  };
  const Case cases[] = {
      {kSystem, 0xDEAD, 0, true, ERROR_MR_MID_NOT_FOUND},
      {kSystem, 5, 0x0407, true, ERROR_RESOURCE_LANG_NOT_FOUND},  // German
      {FORMAT_MESSAGE_FROM_STRING, 0, 0, true, ERROR_INVALID_PARAMETER},
      {kSystem | 40, 5, 0, true, ERROR_INVALID_PARAMETER},  // lines wrapped at 40
      {kSystem | FORMAT_MESSAGE_ALLOCATE_BUFFER, 5, 0, false, ERROR_INVALID_PARAMETER},
  };
  for (const Case& c : cases) {
    char buffer[64] = "untouched";
    EXPECT_EQ(FormatMessageA(c.flags, "x", c.id, c.language, c.buffer ? buffer : nullptr,
                             sizeof buffer, nullptr),
              0u);
    EXPECT_EQ(GetLastError(), c.error) << c.id;
    EXPECT_STREQ(buffer, "untouched");
  }
}

}  // namespace
