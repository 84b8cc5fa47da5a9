// The text of a .reg file: its encoding, told by the byte-order mark or else by the header
// (UTF-16LE, UTF-8, or the ANSI code page for REGEDIT4), its lines, and the form it has.
#ifndef VRX_WINAPI_REG_TEXT_H
#define VRX_WINAPI_REG_TEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace winapi {

// Lines are decoded and parsed in parts of about this many, on every processor at once.
constexpr std::size_t kLinesPerPart = 16384;

// What regedit skips around statements and hex bytes.
constexpr std::wstring_view kRegBlanks = L" \t";

struct RegText {
  bool regedit4 = false;                 // the REGEDIT4 form, whose hex strings are ANSI text
  std::vector<std::wstring_view> lines;  // the header first, without line ends; views of `parts`
  std::vector<std::wstring> parts;       // the decoded text, one piece per part of lines
};

// Throws MachineError "file:line: problem" for bytes that are not text in their encoding and
// for a file without either header.
RegText decodeRegText(std::string_view bytes, const std::string& file, unsigned ansiCodePage);

// Text for messages.
std::string toUtf8(std::wstring_view text);

}  // namespace winapi

#endif
