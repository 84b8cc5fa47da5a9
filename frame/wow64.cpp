#include "frame/wow64.h"

#include "frame/platform.h"
#include "frame/procedure.h"

namespace installedapps_col {

namespace {
typedef BOOL(WINAPI* IsWow64ProcessFunction)(HANDLE, PBOOL);
}

bool runsUnderWow64() {
  // Looked up at run time: systems before XP SP2 lack the function.
  auto isWow64Process =
      procedure<IsWow64ProcessFunction>(GetModuleHandleA("kernel32"), "IsWow64Process");
  BOOL wow64 = FALSE;
  if (!isWow64Process || !isWow64Process(GetCurrentProcess(), &wow64)) return false;
  return wow64 == 1;
}

}  // namespace installedapps_col
