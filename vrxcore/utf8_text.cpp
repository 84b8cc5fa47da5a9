#include "vrxcore/utf8_text.h"

#include <algorithm>
#include <iterator>

namespace NZARVEK20 {
namespace {

struct TRange {
  char32_t first, last;
};

bool inRanges(char32_t character, const TRange* begin, const TRange* end) {
  const TRange* found = std::lower_bound(
      begin, end, character, [](const TRange& range, char32_t c) { return range.last < c; });
  return found != end && found->first <= character;
}

// Combining marks that take no column of their own.
constexpr TRange kZeroWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
    {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}};

// East Asian wide and full-width forms, and the emoji planes.
constexpr TRange kDoubleWidth[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},
                                   {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},
                                   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE4F},
                                   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F},
                                   {0x1F900, 0x1F9FF}, {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD}};

unsigned sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

constexpr char32_t kBroken = 0xFFFFFFFF;

// The character of the sequence at `text[at]` of `length` bytes, or kBroken
// when it is cut short, overlong, a surrogate or beyond U+10FFFF.
char32_t decodeSequence(const std::string& text, size_t at, unsigned length) {
  if (length == 0 || at + length > text.size()) return kBroken;
  static constexpr unsigned char kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t character = static_cast<unsigned char>(text[at]) & kLeadMask[length];
  for (unsigned i = 1; i < length; ++i) {
    const unsigned char next = static_cast<unsigned char>(text[at + i]);
    if ((next & 0xC0) != 0x80) return kBroken;
    character = (character << 6) | (next & 0x3F);
  }
  static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kSmallest[length] || character > 0x10FFFF ||
      (character >= 0xD800 && character <= 0xDFFF))
    return kBroken;
  return character;
}

}  // namespace

std::u32string decodeUtf8(const std::string& text) {
  std::u32string characters;
  for (size_t at = 0; at < text.size();) {
    const unsigned length = sequenceLength(static_cast<unsigned char>(text[at]));
    const char32_t character = decodeSequence(text, at, length);
    // A broken sequence gives up only its first byte: what follows is read
    // again on its own.
    characters += character == kBroken ? kReplacementCharacter : character;
    at += character == kBroken ? 1 : length;
  }
  return characters;
}

bool isPlainAscii(std::string_view text, std::string_view special) {
  return std::all_of(text.begin(), text.end(), [&](char c) {
    return c >= 0x20 && c < 0x7F && special.find(c) == std::string_view::npos;
  });
}

void appendUtf8(std::string& out, char32_t character) {
  if (character < 0x80) {
    out += static_cast<char>(character);
  } else if (character < 0x800) {
    out += static_cast<char>(0xC0 | (character >> 6));
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    out += static_cast<char>(0xE0 | (character >> 12));
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (character >> 18));
    out += static_cast<char>(0x80 | ((character >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  }
}

bool isControlCharacter(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

unsigned displayWidth(char32_t character) {
  if (inRanges(character, std::begin(kZeroWidth), std::end(kZeroWidth))) return 0;
  if (inRanges(character, std::begin(kDoubleWidth), std::end(kDoubleWidth))) return 2;
  return 1;
}

}  // namespace NZARVEK20
