// Wow64DisableWow64FsRedirection and Wow64RevertWow64FsRedirection: whether the calling thread's
// file lookups follow WOW64 redirection (fs_redirection.h). In a 64-bit process there is nothing
// to redirect and both functions fail with ERROR_INVALID_FUNCTION.
#include <cstdint>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/fs_redirection.h"
#include "winapi/machine/machine.h"

namespace {

BOOL fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

}  // namespace

extern "C" BOOL WINAPI Wow64DisableWow64FsRedirection(PVOID* OldValue) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("Wow64DisableWow64FsRedirection", Reports::ThroughLastError))
    return *failed;
  if (!isWow64(currentMachine())) return fail(ERROR_INVALID_FUNCTION);
  if (!OldValue) return fail(ERROR_NOACCESS);
  *OldValue = reinterpret_cast<PVOID>(static_cast<std::uintptr_t>(redirectionDisabled));
  redirectionDisabled = true;
  return TRUE;
}

// OldValue is what Wow64DisableWow64FsRedirection left: whether redirection was off before.
extern "C" BOOL WINAPI Wow64RevertWow64FsRedirection(PVOID OlValue) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("Wow64RevertWow64FsRedirection", Reports::ThroughLastError))
    return *failed;
  if (!isWow64(currentMachine())) return fail(ERROR_INVALID_FUNCTION);
  redirectionDisabled = OlValue != nullptr;
  return TRUE;
}
