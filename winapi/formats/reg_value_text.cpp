#include "winapi/formats/reg_value_text.h"

#include <optional>
#include <string_view>

#include "winapi/include/windows.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr std::wstring_view kLineEnd = L"\r\n";
constexpr std::wstring_view kGoesOn = L"\\\r\n  ";
// A hex list goes on at the next line once a line is this wide after a byte and its comma: with
// the '\' that ends it, no line is wider than 80 characters.
constexpr std::size_t kLineFull = 77;
constexpr std::size_t kIndent = 2;

// The width of text as regedit counts it, in UTF-16 units.
std::size_t utf16Width(std::wstring_view text) {
  std::size_t width = text.size();
  for (wchar_t c : text)
    if (static_cast<std::uint32_t>(c) >= 0x10000) ++width;
  return width;
}

void appendHexNumber(std::wstring& text, std::uint32_t number, int digits) {
  static constexpr wchar_t kDigits[] = L"0123456789abcdef";
  while (digits < 8 && (number >> (4 * digits)) != 0) ++digits;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text += kDigits[(number >> shift) & 15];
}

void appendQuoted(std::wstring& text, std::wstring_view string) {
  text += L'"';
  for (wchar_t c : string) {
    if (c == L'\\' || c == L'"') text += L'\\';
    text += c;
  }
  text += L'"';
}

bool isSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// The text of a REG_SZ that reads back as the same bytes when written in quotes.
std::optional<std::wstring> quotableText(std::string_view data) {
  if (data.size() < 2 || data.size() % 2 != 0 ||
      data.substr(data.size() - 2) != std::string_view("\0\0", 2))
    return std::nullopt;
  std::wstring text = fromUtf16Bytes(data.substr(0, data.size() - 2));
  for (wchar_t c : text)
    if (c == L'\0' || c == L'\n' || isSurrogate(c)) return std::nullopt;
  return text;
}

// "hex(N):" and the bytes; `lineStart` is where the value's line starts in `text`.
void appendHexList(std::wstring& text, std::size_t lineStart, const RegistryValue& value) {
  text += L"hex";
  if (value.type != REG_BINARY) {
    text += L'(';
    appendHexNumber(text, value.type, 1);
    text += L')';
  }
  text += L':';
  std::size_t width = utf16Width(std::wstring_view(text).substr(lineStart));
  const std::string& data = value.data;
  for (std::size_t at = 0; at < data.size(); ++at) {
    appendHexNumber(text, static_cast<unsigned char>(data[at]), 2);
    if (at + 1 == data.size()) break;
    text += L',';
    width += 3;
    if (width >= kLineFull) {
      text += kGoesOn;
      width = kIndent;
    }
  }
}

}  // namespace

void appendRegValue(std::wstring& text, const RegistryValue& value) {
  std::size_t lineStart = text.size();
  if (value.name.empty())
    text += L'@';
  else
    appendQuoted(text, value.name);
  text += L'=';
  std::optional<std::wstring> quotable;
  if (value.type == REG_SZ) quotable = quotableText(value.data);
  if (quotable) {
    appendQuoted(text, *quotable);
  } else if (value.type == REG_DWORD && value.data.size() == 4) {
    text += L"dword:";
    appendHexNumber(text, littleEndian(value.data, 0, 4), 8);
  } else {
    appendHexList(text, lineStart, value);
  }
  text += kLineEnd;
}

}  // namespace winapi
