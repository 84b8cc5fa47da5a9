// Last error (per thread, as on Windows) and the process error mode.
#include <atomic>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;
std::atomic<UINT> errorMode{0};

}  // namespace

extern "C" DWORD WINAPI GetLastError() { return lastError; }

extern "C" void WINAPI SetLastError(DWORD dwErrCode) { lastError = dwErrCode; }

// Every mode is kept: there are no critical-error boxes on Linux to suppress.
extern "C" UINT WINAPI SetErrorMode(UINT uMode) {
  if (auto failed = winapi::injected<UINT>("SetErrorMode", winapi::Reports::ByReturnValue))
    return *failed;
  return errorMode.exchange(uMode);
}
