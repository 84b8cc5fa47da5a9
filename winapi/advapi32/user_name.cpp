// The user of the machine's process (`userName`), in its ANSI code page. A machine that does
// not name one has a user whose account cannot be looked up.
#include <cstring>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"

extern "C" BOOL WINAPI GetUserNameA(LPSTR lpBuffer, LPDWORD pcbBuffer) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GetUserNameA", Reports::ThroughLastError)) return *failed;
  if (!pcbBuffer) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const Machine& machine = currentMachine();
  auto userName = machine.description().find("userName");
  if (userName == machine.description().end()) {
    SetLastError(ERROR_NONE_MAPPED);
    return FALSE;
  }
  std::string name = utf8ToCodePage(machine.ansiCodePage(), userName->get<std::string>());
  // Both answers count the terminator.
  const DWORD size = static_cast<DWORD>(name.size() + 1);
  if (*pcbBuffer < size) {
    *pcbBuffer = size;
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  if (!lpBuffer) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  std::memcpy(lpBuffer, name.c_str(), size);
  *pcbBuffer = size;
  return TRUE;
}
