// ExpandEnvironmentStringsA: each %NAME% becomes the value of the machine's variable, names
// compared without regard to case; %NAME% of a variable that is not there stays as it is, and
// so does a % without its partner.
#include <cstring>
#include <string>
#include <string_view>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"

namespace {

// Names are kept in UTF-8; the text comes in the ANSI code page.
std::string utf8Name(std::string_view ansi, unsigned codePage) {
  auto decoded = winapi::decode(codePage, ansi.data(), ansi.size());
  auto encoded = decoded ? winapi::encode(winapi::kUtf8CodePage, decoded->text.data(),
                                          decoded->text.size(), "?")
                         : std::nullopt;
  return encoded ? encoded->bytes : std::string(ansi);
}

// '%' is never a trail byte of a double-byte code page, so the bytes can be scanned as they are.
std::string expand(std::string_view text) {
  const winapi::Machine& machine = winapi::currentMachine();
  std::string result;
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t open = text.find('%', at);
    std::size_t close = open == std::string_view::npos ? open : text.find('%', open + 1);
    if (close == std::string_view::npos) {
      result.append(text.substr(at));
      break;
    }
    result.append(text.substr(at, open - at));
    std::string name = utf8Name(text.substr(open + 1, close - open - 1), machine.ansiCodePage());
    const winapi::EnvironmentBlock::Variable* variable = machine.environment().find(name);
    if (variable)
      result += variable->ansiValue;
    else
      result.append(text.substr(open, close - open + 1));
    at = close + 1;
  }
  return result;
}

}  // namespace

extern "C" DWORD WINAPI ExpandEnvironmentStringsA(LPCSTR lpSrc, LPSTR lpDst, DWORD nSize) {
  using namespace winapi;
  if (auto failed = injected<DWORD>("ExpandEnvironmentStringsA", Reports::ThroughLastError))
    return *failed;
  if (!lpSrc || (!lpDst && nSize != 0)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  std::string expanded = expand(lpSrc);
  // The size with the terminator, whether it fitted or not.
  std::size_t size = expanded.size() + 1;
  if (size <= nSize) std::memcpy(lpDst, expanded.c_str(), size);
  return static_cast<DWORD>(size);
}
