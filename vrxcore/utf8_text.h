// Reading UTF-8 one character at a time, for the exporters that must emit
// only valid text and that measure it for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace NZARVEK20 {

constexpr char32_t kReplacementCharacter = 0xFFFD;

// The characters of `text`; every byte that starts no valid UTF-8 sequence
// (overlong forms and surrogates included) reads as U+FFFD.
std::u32string decodeUtf8(const std::string& text);

void appendUtf8(std::string& out, char32_t character);

// Whether every byte of `text` is printable ASCII other than those in `special`: text that a
// format may write as it stands, without decoding it.
bool isPlainAscii(std::string_view text, std::string_view special = {});

// C0 controls, DEL and C1 controls.
bool isControlCharacter(char32_t character);

// Columns a terminal gives the character: 0 for combining marks, 2 for
// East Asian wide and full-width forms, 1 otherwise.
unsigned displayWidth(char32_t character);

}  // namespace NZARVEK20
