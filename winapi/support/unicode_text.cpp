#include "winapi/support/unicode_text.h"

#include "winapi/support/code_pages.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

unsigned unitAt(const unsigned char* bytes, std::size_t index) {
  return littleEndian({reinterpret_cast<const char*>(bytes + 2 * index), 2}, 0, 2);
}

bool isHighSurrogate(unsigned unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(unsigned unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

std::wstring utf16leToWide(const unsigned char* bytes, std::size_t units) {
  std::wstring text;
  text.reserve(units);
  for (std::size_t i = 0; i < units; ++i) {
    unsigned unit = unitAt(bytes, i);
    if (isHighSurrogate(unit) && i + 1 < units && isLowSurrogate(unitAt(bytes, i + 1))) {
      text.push_back(static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) +
                                          (unitAt(bytes, i + 1) - 0xDC00)));
      ++i;
    } else {
      text.push_back(isHighSurrogate(unit) || isLowSurrogate(unit) ? kReplacement
                                                                   : static_cast<wchar_t>(unit));
    }
  }
  return text;
}

std::string wideToUtf8(const std::wstring& text) {
  return encode(kUtf8CodePage, text.data(), text.size(), "\xEF\xBF\xBD")->bytes;
}

std::string utf16leToUtf8(const unsigned char* bytes, std::size_t units) {
  return wideToUtf8(utf16leToWide(bytes, units));
}

std::string codePageToUtf8(unsigned codePage, std::string_view bytes) {
  auto decoded = decode(codePage, bytes.data(), bytes.size());
  return decoded ? wideToUtf8(decoded->text) : std::string(bytes);
}

}  // namespace winapi
