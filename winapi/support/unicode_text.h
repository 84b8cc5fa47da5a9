// Text as files bring it (UTF-16LE in INF files and version resources, ANSI bytes of a code
// page) turned into the UTF-8 this layer keeps, and back out for the A functions.
#ifndef VRX_WINAPI_UNICODE_TEXT_H
#define VRX_WINAPI_UNICODE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace winapi {

// `units` UTF-16LE code units from `bytes`; a lone surrogate becomes U+FFFD, as Windows does.
std::wstring utf16leToWide(const unsigned char* bytes, std::size_t units);
std::string wideToUtf8(const std::wstring& text);
std::string utf16leToUtf8(const unsigned char* bytes, std::size_t units);
// Bytes in code page `codePage` (an A function's argument, an ANSI file) as UTF-8; bytes that
// start no character become U+FFFD.
std::string codePageToUtf8(unsigned codePage, std::string_view bytes);

}  // namespace winapi

#endif
