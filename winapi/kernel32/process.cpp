// The process itself: its pseudo handle, and whether it is a 32-bit process on 64-bit Windows
// (the machine's system.wow64).
#include <cstdint>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"

namespace {

const HANDLE kCurrentProcess = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));

}  // namespace

extern "C" HANDLE WINAPI GetCurrentProcess() {
  using namespace winapi;
  if (auto failed = injected<HANDLE>("GetCurrentProcess", Reports::ByReturnValue)) return *failed;
  return kCurrentProcess;
}

extern "C" BOOL WINAPI IsWow64Process(HANDLE hProcess, PBOOL Wow64Process) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("IsWow64Process", Reports::ThroughLastError)) return *failed;
  // The machine has no other process to ask about.
  if (hProcess != kCurrentProcess) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if (!Wow64Process) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  *Wow64Process = currentMachine().wow64() ? TRUE : FALSE;
  return TRUE;
}
