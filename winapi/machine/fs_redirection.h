// The machine's files as the calling thread sees them. For a 32-bit process on 64-bit Windows
// (system.wow64 in machine.json) %windir%\System32 is %windir%\SysWOW64, but for the few
// directories that Windows shares between both, until the thread turns redirection off with
// Wow64DisableWow64FsRedirection (wow64_redirection.cpp).
#ifndef VRX_WINAPI_FS_REDIRECTION_H
#define VRX_WINAPI_FS_REDIRECTION_H

#include <cstdint>
#include <string>

namespace winapi {

class Machine;

// Whether the calling thread turned redirection off; per thread, as on Windows.
extern thread_local bool redirectionDisabled;

// Whether the machine's process is a 32-bit process on 64-bit Windows (system.wow64).
bool isWow64(const Machine& machine);

struct MachineFile {
  std::string path;         // the file's path among the machine's files, when error is 0
  std::uint32_t error = 0;  // as opening the file for reading reports it
};

// `windowsPath` in UTF-8, drive-absolute or rooted ("\x" is on the drive of the Windows
// directory). Errors: ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND when a directory on the way is
// missing, ERROR_ACCESS_DENIED for a directory.
MachineFile findMachineFile(const std::string& windowsPath);

}  // namespace winapi

#endif
