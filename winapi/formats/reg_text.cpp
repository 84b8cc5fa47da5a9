#include "winapi/formats/reg_text.h"

#include <algorithm>
#include <optional>

#include "winapi/support/code_pages.h"
#include "winapi/support/errors.h"
#include "winapi/support/parallel.h"
#include "winapi/support/registry_store.h"

namespace winapi {

namespace {

constexpr std::string_view kVersion5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kVersion4 = "REGEDIT4";

enum class Encoding { Utf16, Utf8, Ansi };

bool startsWith(std::string_view bytes, std::string_view prefix) {
  return bytes.substr(0, prefix.size()) == prefix;
}

// The byte-order mark decides; without one, a REGEDIT4 file is ANSI text and the rest UTF-8.
Encoding takeEncoding(std::string_view& bytes) {
  if (startsWith(bytes, "\xFF\xFE")) {
    bytes.remove_prefix(2);
    return Encoding::Utf16;
  }
  if (startsWith(bytes, "\xEF\xBB\xBF")) {
    bytes.remove_prefix(3);
    return Encoding::Utf8;
  }
  return startsWith(bytes, kVersion4) ? Encoding::Ansi : Encoding::Utf8;
}

// Line feeds are whole code units in every encoding here (the trail bytes of the double-byte
// ANSI pages start at 0x40).
std::vector<std::string_view> splitLines(std::string_view bytes, std::size_t unit) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  for (std::size_t i = bytes.find('\n'); i != std::string_view::npos; i = bytes.find('\n', i + 1)) {
    // In UTF-16LE a line feed is the byte 0x0A at an even place followed by a zero.
    if (unit == 2 && (i % 2 != 0 || i + 1 == bytes.size() || bytes[i + 1] != '\0')) continue;
    lines.push_back(bytes.substr(start, i - start));
    start = i + unit;
  }
  lines.push_back(bytes.substr(start));
  return lines;
}

// Appends the line's text to `out`, without its '\r'; false for bytes that are no text.
bool decodeLine(std::string_view bytes, Encoding encoding, unsigned ansiCodePage,
                std::wstring& out) {
  std::size_t start = out.size();
  if (encoding == Encoding::Utf16) {
    out += fromUtf16Bytes(bytes);
    if (std::any_of(out.begin() + start, out.end(),
                    [](wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; }))
      return false;
  } else if (isAscii(bytes)) {
    // ASCII is the same in UTF-8 and every ANSI code page.
    out.append(bytes.begin(), bytes.end());
  } else {
    auto decoded = decode(encoding == Encoding::Utf8 ? kUtf8CodePage : ansiCodePage, bytes.data(),
                          bytes.size());
    if (!decoded || decoded->invalid) return false;
    out += decoded->text;
  }
  if (out.size() > start && out.back() == L'\r') out.pop_back();
  return true;
}

std::string describe(Encoding encoding, unsigned ansiCodePage) {
  switch (encoding) {
    case Encoding::Utf16:
      return "UTF-16LE text";
    case Encoding::Utf8:
      return "UTF-8 text";
    case Encoding::Ansi:
      break;
  }
  return "text in code page " + std::to_string(ansiCodePage);
}

}  // namespace

RegText decodeRegText(std::string_view bytes, const std::string& file, unsigned ansiCodePage) {
  Encoding encoding = takeEncoding(bytes);
  std::size_t unit = encoding == Encoding::Utf16 ? 2 : 1;
  if (bytes.size() % unit != 0) throw MachineError(file + ": UTF-16LE text of an odd length");
  std::vector<std::string_view> lines = splitLines(bytes, unit);
  RegText text;
  text.lines.resize(lines.size());
  text.parts.resize(slicesOf(lines.size(), kLinesPerPart));
  inParallelSlices(
      lines.size(), kLinesPerPart, [&](std::size_t part, std::size_t first, std::size_t end) {
        std::wstring& decoded = text.parts[part];
        // Each code unit is at most one character.
        decoded.reserve((lines[end - 1].data() + lines[end - 1].size() - lines[first].data()) /
                        unit);
        std::vector<std::size_t> ends;
        ends.reserve(end - first);
        for (std::size_t at = first; at < end; ++at) {
          if (!decodeLine(lines[at], encoding, ansiCodePage, decoded))
            throw MachineError(file + ":" + std::to_string(at + 1) + ": not " +
                               describe(encoding, ansiCodePage));
          ends.push_back(decoded.size());
        }
        // Views only once the part's text has stopped growing.
        std::wstring_view all = decoded;
        for (std::size_t at = first, begin = 0; at < end; begin = ends[at - first], ++at)
          text.lines[at] = all.substr(begin, ends[at - first] - begin);
      });
  std::wstring_view header = text.lines[0];
  std::string first = toUtf8(header.substr(0, header.find_last_not_of(kRegBlanks) + 1));
  if (first != kVersion5 && first != kVersion4)
    throw MachineError(file + ":1: expected \"" + std::string(kVersion5) + "\" or \"" +
                       std::string(kVersion4) + "\" as the first line");
  text.regedit4 = first == kVersion4;
  return text;
}

std::string toUtf8(std::wstring_view text) {
  auto encoded = encode(kUtf8CodePage, text.data(), text.size(), "?");
  return encoded ? encoded->bytes : std::string();
}

}  // namespace winapi
