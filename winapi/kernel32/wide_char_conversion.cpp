// WideCharToMultiByte and MultiByteToWideChar. CP_ACP is the machine's ANSI code page; other
// pages go to iconv by number. Unmappable characters become the default character; there is
// no best-fit mapping.
#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"

namespace {

constexpr DWORD kMultiByteFlags =
    0x0000000F;  // MB_PRECOMPOSED, MB_COMPOSITE, MB_USEGLYPHCHARS, MB_ERR_INVALID_CHARS
// WC_DISCARDNS … WC_NO_BEST_FIT_CHARS; WC_ERR_INVALID_CHARS belongs to UTF-8 alone.
constexpr DWORD kWideCharFlags = 0x00000670;
const char kUtf8Default[] = "\xEF\xBF\xBD";  // U+FFFD

UINT resolve(UINT codePage) {
  // CP_THREAD_ACP: the same page as CP_ACP here.
  return codePage == CP_ACP || codePage == CP_THREAD_ACP ? winapi::currentMachine().ansiCodePage()
                                                         : codePage;
}

int fail(DWORD error) {
  SetLastError(error);
  return 0;
}

// Both functions: a source, a non-zero source length (-1 = up to and including the
// terminator), an output that is there when its size is not 0, and not the source itself.
bool validBuffers(const void* source, int sourceLength, const void* target, int targetSize) {
  return source && sourceLength != 0 && sourceLength >= -1 && targetSize >= 0 &&
         (targetSize == 0 || target) && source != target;
}

// Flags allowed for a page: UTF-8 takes only the "invalid characters" flag.
bool validFlags(UINT codePage, DWORD flags, DWORD known, DWORD invalidCharsFlag) {
  return codePage == winapi::kUtf8CodePage ? (flags & ~invalidCharsFlag) == 0
                                           : (flags & ~known) == 0;
}

}  // namespace

extern "C" int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCCH lpMultiByteStr,
                                          int cbMultiByte, LPWSTR lpWideCharStr, int cchWideChar) {
  using namespace winapi;
  if (auto failed = injected<int>("MultiByteToWideChar", Reports::ThroughLastError)) return *failed;
  if (!validBuffers(lpMultiByteStr, cbMultiByte, lpWideCharStr, cchWideChar))
    return fail(ERROR_INVALID_PARAMETER);
  UINT page = resolve(CodePage);
  if (!validFlags(page, dwFlags, kMultiByteFlags, MB_ERR_INVALID_CHARS))
    return fail(ERROR_INVALID_FLAGS);
  std::size_t length =
      cbMultiByte == -1 ? std::strlen(lpMultiByteStr) + 1 : static_cast<std::size_t>(cbMultiByte);
  auto decoded = decode(page, lpMultiByteStr, length);
  if (!decoded) return fail(ERROR_INVALID_PARAMETER);
  if (decoded->invalid && (dwFlags & MB_ERR_INVALID_CHARS))
    return fail(ERROR_NO_UNICODE_TRANSLATION);
  const std::wstring& text = decoded->text;
  if (cchWideChar == 0) return static_cast<int>(text.size());
  // Windows fills what fits before it reports the short buffer.
  std::copy_n(text.begin(), std::min<std::size_t>(text.size(), cchWideChar), lpWideCharStr);
  if (text.size() > static_cast<std::size_t>(cchWideChar)) return fail(ERROR_INSUFFICIENT_BUFFER);
  return static_cast<int>(text.size());
}

extern "C" int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWCH lpWideCharStr,
                                          int cchWideChar, LPSTR lpMultiByteStr, int cbMultiByte,
                                          LPCCH lpDefaultChar, LPBOOL lpUsedDefaultChar) {
  using namespace winapi;
  if (auto failed = injected<int>("WideCharToMultiByte", Reports::ThroughLastError)) return *failed;
  if (!validBuffers(lpWideCharStr, cchWideChar, lpMultiByteStr, cbMultiByte))
    return fail(ERROR_INVALID_PARAMETER);
  UINT page = resolve(CodePage);
  if (page == kUtf8CodePage && (lpDefaultChar || lpUsedDefaultChar))
    return fail(ERROR_INVALID_PARAMETER);
  if (!validFlags(page, dwFlags, kWideCharFlags, WC_ERR_INVALID_CHARS))
    return fail(ERROR_INVALID_FLAGS);
  std::size_t length =
      cchWideChar == -1 ? std::wcslen(lpWideCharStr) + 1 : static_cast<std::size_t>(cchWideChar);
  std::string defaultChar = page == kUtf8CodePage ? kUtf8Default
                            : lpDefaultChar       ? std::string(1, *lpDefaultChar)
                                                  : "?";
  auto encoded = encode(page, lpWideCharStr, length, defaultChar);
  if (!encoded) return fail(ERROR_INVALID_PARAMETER);
  if (encoded->usedDefault && page == kUtf8CodePage && (dwFlags & WC_ERR_INVALID_CHARS))
    return fail(ERROR_NO_UNICODE_TRANSLATION);
  if (lpUsedDefaultChar) *lpUsedDefaultChar = encoded->usedDefault ? TRUE : FALSE;
  const std::string& bytes = encoded->bytes;
  if (cbMultiByte == 0) return static_cast<int>(bytes.size());
  // Whole characters that fit are written before the short buffer is reported.
  auto fits = std::upper_bound(encoded->ends.begin(), encoded->ends.end(),
                               static_cast<std::size_t>(cbMultiByte));
  std::size_t written = fits == encoded->ends.begin() ? 0 : *(fits - 1);
  std::copy_n(bytes.begin(), written, lpMultiByteStr);
  if (bytes.size() > static_cast<std::size_t>(cbMultiByte)) return fail(ERROR_INSUFFICIENT_BUFFER);
  return static_cast<int>(bytes.size());
}
