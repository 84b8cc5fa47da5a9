// Windows code pages through glibc iconv. Wide text is wchar_t (UTF-32 on Linux).
#ifndef VRX_WINAPI_CODE_PAGES_H
#define VRX_WINAPI_CODE_PAGES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace winapi {

constexpr unsigned kUtf8CodePage = 65001;

// glibc's name for a code page, or nullopt when iconv does not know it.
std::optional<std::string> charsetOf(unsigned codePage);
// Whether every ASCII character is that one byte in the code page, so ASCII text needs no
// conversion.
bool keepsAscii(unsigned codePage);
// Bytes all below 0x80.
bool isAscii(std::string_view bytes);

struct Decoded {
  std::wstring text;
  bool invalid = false;  // some bytes were no character and became U+FFFD
};
std::optional<Decoded> decode(unsigned codePage, const char* bytes, std::size_t size);

struct Encoded {
  std::string bytes;
  std::vector<std::size_t> ends;  // where each character's bytes end, so output can be cut whole
  bool usedDefault = false;       // some character had no mapping and became the default
};
std::optional<Encoded> encode(unsigned codePage, const wchar_t* text, std::size_t size,
                              const std::string& defaultChar);

// Text of machine.json (UTF-8) as the A functions hand it out; '?' where the page lacks a
// character.
std::string utf8ToCodePage(unsigned codePage, const std::string& utf8);
std::wstring utf8ToWide(const std::string& utf8);

}  // namespace winapi

#endif
