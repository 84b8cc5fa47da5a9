#include "vrxcore/utf8_text.h"

#include <gtest/gtest.h>

namespace NZARVEK20 {
namespace {

TEST(Utf8Text, BrokenSequencesGiveOneReplacementPerByteAndResumeAtTheNext) {
  const std::vector<std::pair<std::string, std::u32string>> cases = {
      {"a\xC3\xA9z", U"a\u00E9z"},
      {"\xEF\xBF\xBD", U"\uFFFD"},                        // a real U+FFFD stays one character
      {"\xF0\x9F\x98\x80", U"\U0001F600"},                // four bytes
      {"\xC0\x80", U"\uFFFD\uFFFD"},                      // overlong NUL
      {"\xE0\x80\xAF", U"\uFFFD\uFFFD\uFFFD"},            // overlong '/'
      {"\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},            // a surrogate
      {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond U+10FFFF
      {"\xE2\x82", U"\uFFFD\uFFFD"},                      // cut short at the end
      {"\xE2\x82z", U"\uFFFD\uFFFDz"},                    // cut short before ASCII
      {"\xFF\xC3\xA9", U"\uFFFD\u00E9"},
      {std::string("a\0b", 3), std::u32string(U"a\0b", 3)},
  };
  for (const auto& c : cases) EXPECT_EQ(decodeUtf8(c.first), c.second) << c.first;
}

TEST(Utf8Text, EncodingRoundTripsEveryLength) {
  std::string out;
  for (const char32_t c : {U'A', U'\u00E9', U'\u20AC', U'\U0001F600'}) appendUtf8(out, c);
  EXPECT_EQ(out, "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(decodeUtf8(out), U"A\u00E9\u20AC\U0001F600");
}

TEST(Utf8Text, ControlsAndTerminalWidths) {
  EXPECT_TRUE(isControlCharacter(0));
  EXPECT_TRUE(isControlCharacter(0x1F));
  EXPECT_TRUE(isControlCharacter(0x7F));
  EXPECT_TRUE(isControlCharacter(0x9F));
  EXPECT_FALSE(isControlCharacter(' '));
  EXPECT_FALSE(isControlCharacter(0xA0));
  EXPECT_EQ(displayWidth(U'a'), 1u);
  EXPECT_EQ(displayWidth(U'\u00E9'), 1u);
  EXPECT_EQ(displayWidth(U'\u0301'), 0u);  // combining acute
  EXPECT_EQ(displayWidth(U'\u65E5'), 2u);  // CJK
  EXPECT_EQ(displayWidth(U'\uAC00'), 2u);  // Hangul, first syllable
  EXPECT_EQ(displayWidth(U'\uD7A4'), 1u);  // just past the syllables
  EXPECT_EQ(displayWidth(U'\uFF21'), 2u);  // full-width A
  EXPECT_EQ(displayWidth(U'\U0001F600'), 2u);
}

}  // namespace
}  // namespace NZARVEK20
