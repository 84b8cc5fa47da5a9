// FormatMessageA over the system message table. Only FORMAT_MESSAGE_FROM_SYSTEM is a source
// here; the table holds no texts with inserts, so Arguments is never read.
#include <algorithm>
#include <cstring>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/kernel32/system_messages.h"
#include "winapi/machine/faults.h"
#include "winapi/support/local_memory.h"

namespace {

constexpr WORD kLangEnglish = 0x09;
constexpr DWORD kNoLineBreaks = FORMAT_MESSAGE_MAX_WIDTH_MASK;

// ERROR_SUCCESS when the flags ask for what this table can give.
DWORD checkRequest(DWORD flags, DWORD languageId) {
  DWORD width = flags & FORMAT_MESSAGE_MAX_WIDTH_MASK;
  if ((flags & FORMAT_MESSAGE_FROM_STRING) || !(flags & FORMAT_MESSAGE_FROM_SYSTEM) ||
      (width != 0 && width != kNoLineBreaks))
    return ERROR_INVALID_PARAMETER;
  WORD primary = languageId & 0x3FF;
  return primary == LANG_NEUTRAL || primary == kLangEnglish ? ERROR_SUCCESS
                                                            : ERROR_RESOURCE_LANG_NOT_FOUND;
}

// The message as the flags want it: with FORMAT_MESSAGE_MAX_WIDTH_MASK the text's own line
// break goes.
std::string messageText(const char* text, DWORD flags) {
  std::string message(text);
  if ((flags & FORMAT_MESSAGE_MAX_WIDTH_MASK) == kNoLineBreaks) message.erase(message.size() - 2);
  return message;
}

DWORD deliver(const std::string& message, DWORD flags, LPSTR lpBuffer, DWORD nSize) {
  char* target = lpBuffer;
  if (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) {
    // lpBuffer is really a char**; nSize is the least to allocate.
    target =
        static_cast<char*>(winapi::allocateLocal(std::max<std::size_t>(nSize, message.size() + 1)));
    *reinterpret_cast<char**>(lpBuffer) = target;
  } else if (nSize <= message.size()) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  std::memcpy(target, message.c_str(), message.size() + 1);
  return static_cast<DWORD>(message.size());
}

}  // namespace

extern "C" DWORD WINAPI FormatMessageA(DWORD dwFlags, LPCVOID /*lpSource*/, DWORD dwMessageId,
                                       DWORD dwLanguageId, LPSTR lpBuffer, DWORD nSize,
                                       va_list* /*Arguments*/) {
  using namespace winapi;
  if (auto failed = injected<DWORD>("FormatMessageA", Reports::ThroughLastError)) return *failed;
  DWORD error = lpBuffer ? checkRequest(dwFlags, dwLanguageId) : ERROR_INVALID_PARAMETER;
  const char* text = systemMessage(dwMessageId);
  if (error == ERROR_SUCCESS && !text) error = ERROR_MR_MID_NOT_FOUND;
  if (error != ERROR_SUCCESS) {
    SetLastError(error);
    return 0;
  }
  return deliver(messageText(text, dwFlags), dwFlags, lpBuffer, nSize);
}
