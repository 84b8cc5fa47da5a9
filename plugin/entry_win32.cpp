// Registration on the process-attach notification; the other notifications
// do nothing.
#include <windows.h>

#include "plugin/registration.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  // An exception must not unwind into the system loader: the load fails
  // instead, and the host reports it.
  try {
    return installedapps_col::registerWithHost() ? TRUE : FALSE;
  } catch (...) {
    return FALSE;
  }
}
