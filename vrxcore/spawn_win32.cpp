// Runs a command of the live machine and collects what it prints.
#include <windows.h>

#include "host/os_specific.h"

namespace NZARVEK20 {
namespace {

struct THandle {
  HANDLE handle = nullptr;
  ~THandle() {
    if (handle) CloseHandle(handle);
  }
};

}  // namespace

std::string TOSSpecific::SpawnProcess(std::string commandLine, int limit) {
  SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
  THandle readEnd, writeEnd;
  if (!CreatePipe(&readEnd.handle, &writeEnd.handle, &inherit, 0)) return std::string();
  SetHandleInformation(readEnd.handle, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = writeEnd.handle;
  startup.hStdError = writeEnd.handle;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &startup, &process))
    return std::string();
  THandle processHandle{process.hProcess}, threadHandle{process.hThread};
  CloseHandle(writeEnd.handle);
  writeEnd.handle = nullptr;
  // `limit` is in seconds; what the command printed until then is kept.
  const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(limit) * 1000;
  std::string output;
  for (;;) {
    DWORD available = 0;
    if (!PeekNamedPipe(readEnd.handle, nullptr, 0, nullptr, &available, nullptr)) break;
    if (available == 0) {
      if (WaitForSingleObject(process.hProcess, 0) == WAIT_OBJECT_0 &&
          PeekNamedPipe(readEnd.handle, nullptr, 0, nullptr, &available, nullptr) && !available)
        break;
      if (GetTickCount64() > deadline) break;
      Sleep(10);
      continue;
    }
    char buffer[4096];
    DWORD got = 0;
    if (!ReadFile(readEnd.handle, buffer, sizeof buffer, &got, nullptr) || got == 0) break;
    output.append(buffer, got);
  }
  return output;
}

}  // namespace NZARVEK20
