#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <iterator>
#include <string>

#include "test_machine.h"
#include "winapi/include/windows.h"

namespace {

TEST(CodePage, AnsiIsTheMachinesCodePage) {
  struct Case {
    unsigned ansiCodePage;
    const char* bytes;
    const wchar_t* text;
  };
  const Case cases[] = {
      {1252, "caf\xE9 \x80", L"caf\u00E9 \u20AC"},
      {1251, "\xE9", L"\u0439"},
      {932, "\x82\xA0", L"\u3042"},
  };
  for (const Case& c : cases) {
    CurrentMachine machine(nlohmann::json{{"ansiCodePage", c.ansiCodePage}});
    const int bytes = static_cast<int>(std::strlen(c.bytes)) + 1;
    const int chars = static_cast<int>(std::wcslen(c.text)) + 1;
    wchar_t wide[16];
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, c.bytes, -1, nullptr, 0), chars) << c.ansiCodePage;
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, c.bytes, -1, wide, 16), chars);
    EXPECT_EQ(std::wstring(wide), c.text);
    char narrow[16];
    BOOL usedDefault = TRUE;
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, c.text, -1, nullptr, 0, nullptr, nullptr), bytes);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, c.text, -1, narrow, 16, nullptr, &usedDefault), bytes);
    EXPECT_EQ(std::string(narrow), c.bytes);
    EXPECT_FALSE(usedDefault);
  }
}

TEST(CodePage, LengthsAndShortBuffers) {
  // An explicit length converts no terminator.
  wchar_t wide[8];
  std::wmemset(wide, L'#', 8);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "caf\xE9", 4, wide, 8), 4);
  EXPECT_EQ(wide[4], L'#');

  // Too short: what fits is written, nothing past it, and the call fails.
  char narrow[8];
  std::memset(narrow, '#', sizeof narrow);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, L"caf\u00E9", -1, narrow, 3, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(std::string(narrow, 4), "caf#");
  std::wmemset(wide, L'#', 8);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "caf\xE9", -1, wide, 4), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(wide[4], L'#');

  // A character of two bytes is not cut in half.
  std::memset(narrow, '#', sizeof narrow);
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a\u00E9", 2, narrow, 2, nullptr, nullptr), 0);
  EXPECT_EQ(std::string(narrow, 2), "a#");
}

TEST(CodePage, UnmappableAndInvalidCharacters) {
  char narrow[8] = {};
  BOOL usedDefault = FALSE;
  EXPECT_EQ(WideCharToMultiByte(1252, 0, L"a\u4E2D", 2, narrow, 8, nullptr, &usedDefault), 2);
  EXPECT_EQ(std::string(narrow, 2), "a?");
  EXPECT_TRUE(usedDefault);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, L"a\u4E2D", 2, narrow, 8, "#", nullptr), 2);
  EXPECT_EQ(std::string(narrow, 2), "a#");

  wchar_t wide[8] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "a\xC3", 2, wide, 8), 2);
  EXPECT_EQ(wide[1], L'\uFFFD');
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3", 2, wide, 8), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
  const wchar_t loneSurrogate[] = {L'a', static_cast<wchar_t>(0xD800)};
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, loneSurrogate, 2, narrow, 8, nullptr,
                                nullptr),
            0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
}

TEST(CodePage, BadArguments) {
  char narrow[8];
  wchar_t wide[8];
  BOOL used;
  const std::pair<std::function<int()>, DWORD> cases[] = {
      {[&] { return WideCharToMultiByte(1252, 0, nullptr, -1, narrow, 8, nullptr, nullptr); },
       ERROR_INVALID_PARAMETER},
      {[&] { return WideCharToMultiByte(1252, 0, L"a", 0, narrow, 8, nullptr, nullptr); },
       ERROR_INVALID_PARAMETER},
      {[&] { return WideCharToMultiByte(1252, 0, L"a", -2, narrow, 8, nullptr, nullptr); },
       ERROR_INVALID_PARAMETER},
      {[&] { return WideCharToMultiByte(1252, 0, L"a", -1, nullptr, 8, nullptr, nullptr); },
       ERROR_INVALID_PARAMETER},
      {[&] { return WideCharToMultiByte(1252, 0, L"a", -1, narrow, -1, nullptr, nullptr); },
       ERROR_INVALID_PARAMETER},
      {[&] { return WideCharToMultiByte(12345, 0, L"a", -1, narrow, 8, nullptr, nullptr); },
       ERROR_INVALID_PARAMETER},
      {[&] { return WideCharToMultiByte(CP_UTF8, 0, L"a", -1, narrow, 8, nullptr, &used); },
       ERROR_INVALID_PARAMETER},
      {[&] {
         return WideCharToMultiByte(1252, WC_ERR_INVALID_CHARS, L"a", -1, narrow, 8, nullptr,
                                    nullptr);
       },
       ERROR_INVALID_FLAGS},
      {[&] { return MultiByteToWideChar(1252, 0, nullptr, -1, wide, 8); }, ERROR_INVALID_PARAMETER},
      {[&] { return MultiByteToWideChar(1252, 0, "a", 0, wide, 8); }, ERROR_INVALID_PARAMETER},
      {[&] { return MultiByteToWideChar(1252, 0x100, "a", -1, wide, 8); }, ERROR_INVALID_FLAGS},
      {[&] { return MultiByteToWideChar(CP_UTF8, 1, "a", -1, wide, 8); }, ERROR_INVALID_FLAGS},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SetLastError(0);
    EXPECT_EQ(cases[i].first(), 0) << "case " << i;
    EXPECT_EQ(GetLastError(), cases[i].second) << "case " << i;
  }
}

}  // namespace
