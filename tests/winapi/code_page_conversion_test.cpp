#include <gtest/gtest.h>

#include <string>

#include "winapi/support/code_pages.h"

namespace winapi {
namespace {

std::string encoded(unsigned codePage, const std::wstring& text) {
  auto result = encode(codePage, text.data(), text.size(), "?");
  return result ? result->bytes : "(none)";
}

// Conversions are kept open between calls and ASCII is copied where the code page keeps it: the
// results must be those of a fresh conversion, call after call and code page after code page.
TEST(CodePageConversion, RepeatedAndInterleavedConversionsGiveTheSameBytes) {
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(encoded(1252, L"Caf\u00e9 \u20ac1"),
              "Caf\xe9 \x80"
              "1");
    // EBCDIC: 'A' is 0xC1, so ASCII is not copied through.
    EXPECT_EQ(encoded(1140, L"AB1"), "\xc1\xc2\xf1");
    EXPECT_EQ(encoded(65001, L"a\u00e9"), "a\xc3\xa9");
    auto withInvalid = decode(65001,
                              "a\xff"
                              "b",
                              3);
    ASSERT_TRUE(withInvalid);
    EXPECT_EQ(withInvalid->text,
              L"a\ufffd"
              L"b");
    EXPECT_TRUE(withInvalid->invalid);
    // An invalid byte earlier leaves no state behind for the next conversion.
    auto clean = decode(65001, "ok", 2);
    ASSERT_TRUE(clean);
    EXPECT_EQ(clean->text, L"ok");
    EXPECT_FALSE(clean->invalid);
  }
  auto ends = encode(1252, L"a\u00e9\u4e00", 3, "?");
  ASSERT_TRUE(ends);
  EXPECT_EQ(ends->bytes, "a\xe9?");
  EXPECT_EQ(ends->ends, (std::vector<std::size_t>{1, 2, 3}));
  EXPECT_TRUE(ends->usedDefault);
}

}  // namespace
}  // namespace winapi
