// The process environment of the machine, as GetEnvironmentVariableA reads it.
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/text.h"

namespace {

const winapi::EnvironmentBlock::Variable* findVariable(const char* name) {
  return winapi::currentMachine().environment().find(name);
}

}  // namespace

extern "C" DWORD WINAPI GetEnvironmentVariableA(LPCSTR lpName, LPSTR lpBuffer, DWORD nSize) {
  using namespace winapi;
  if (auto failed = injected<DWORD>("GetEnvironmentVariableA", Reports::ThroughLastError))
    return *failed;
  if (!lpName) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  const EnvironmentBlock::Variable* variable = findVariable(lpName);
  if (!variable) {
    SetLastError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
  }
  // A variable with an empty value also answers 0; the cleared last error tells it apart.
  SetLastError(ERROR_SUCCESS);
  return static_cast<DWORD>(copyOrMeasure(variable->ansiValue, lpBuffer, nSize));
}
