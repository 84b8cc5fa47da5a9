// The machine's NetBIOS name, in its ANSI code page.
#include <cstring>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"

extern "C" BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GetComputerNameA", Reports::ThroughLastError)) return *failed;
  if (!nSize) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const Machine& machine = currentMachine();
  std::string name = utf8ToCodePage(machine.ansiCodePage(), machine.computerName());
  if (*nSize <= name.size()) {
    // The size needed, terminator included.
    *nSize = static_cast<DWORD>(name.size() + 1);
    SetLastError(ERROR_BUFFER_OVERFLOW);
    return FALSE;
  }
  if (!lpBuffer) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  std::memcpy(lpBuffer, name.c_str(), name.size() + 1);
  *nSize = static_cast<DWORD>(name.size());
  return TRUE;
}
