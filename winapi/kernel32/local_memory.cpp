// LocalFree, for the blocks of local memory this layer hands out (local_memory.h).
#include "winapi/support/local_memory.h"

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"

extern "C" HLOCAL WINAPI LocalFree(HLOCAL hMem) {
  using namespace winapi;
  if (auto failed = injected<HLOCAL>("LocalFree", Reports::ThroughLastError)) return *failed;
  if (!hMem) return nullptr;
  if (!freeLocal(hMem)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return hMem;
  }
  return nullptr;
}
