// The Windows and system directories of the machine (system.windowsDirectory and
// system.systemDirectory, else from SystemRoot, else C:\Windows and its system32).
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/text.h"

namespace {

UINT copyDirectory(const std::string& directory, LPSTR lpBuffer, UINT uSize) {
  const winapi::Machine& machine = winapi::currentMachine();
  return static_cast<UINT>(winapi::copyOrMeasure(
      winapi::utf8ToCodePage(machine.ansiCodePage(), directory), lpBuffer, uSize));
}

}  // namespace

extern "C" UINT WINAPI GetSystemDirectoryA(LPSTR lpBuffer, UINT uSize) {
  using namespace winapi;
  if (auto failed = injected<UINT>("GetSystemDirectoryA", Reports::ThroughLastError))
    return *failed;
  return copyDirectory(currentMachine().systemDirectory(), lpBuffer, uSize);
}

extern "C" UINT WINAPI GetSystemWindowsDirectoryA(LPSTR lpBuffer, UINT uSize) {
  using namespace winapi;
  if (auto failed = injected<UINT>("GetSystemWindowsDirectoryA", Reports::ThroughLastError))
    return *failed;
  return copyDirectory(currentMachine().windowsDirectory(), lpBuffer, uSize);
}
