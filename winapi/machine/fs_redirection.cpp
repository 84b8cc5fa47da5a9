// WOW64 file-system redirection: the file lookups that follow it.
#include "winapi/machine/fs_redirection.h"

#include <optional>
#include <string_view>
#include <vector>

#include "winapi/files/windows_path.h"
#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"
#include "winapi/support/text.h"

namespace winapi {

thread_local bool redirectionDisabled = false;

bool isWow64(const Machine& machine) {
  return machine.description().value(nlohmann::json::json_pointer("/system/wow64"), false);
}

namespace {

using Components = std::vector<std::string>;

// Under System32, these stay what they are for a 32-bit process.
const Components kSharedDirectories[] = {
    {"catroot"}, {"catroot2"}, {"driverstore"}, {"drivers", "etc"}, {"logfiles"}, {"spool"},
};

bool isSeparator(char c) { return c == '\\' || c == '/'; }

bool hasAt(const Components& path, const Components& part, std::size_t at) {
  if (path.size() < at + part.size()) return false;
  for (std::size_t i = 0; i < part.size(); ++i)
    if (!equalsIgnoringCase(path[at + i], part[i])) return false;
  return true;
}

WindowsPath redirected(WindowsPath path, const Machine& machine) {
  if (redirectionDisabled || !isWow64(machine)) return path;
  std::optional<WindowsPath> system32 = parseWindowsPath(machine.windowsDirectory());
  if (!system32 || system32->drive != path.drive) return path;
  system32->components.push_back("System32");
  if (!hasAt(path.components, system32->components, 0)) return path;
  for (const Components& shared : kSharedDirectories)
    if (hasAt(path.components, shared, system32->components.size())) return path;
  path.components[system32->components.size() - 1] = "SysWOW64";
  return path;
}

// A rooted path is on the drive of the Windows directory, the drive the process runs from.
std::string onDrive(const std::string& path, const Machine& machine) {
  bool rooted = !path.empty() && isSeparator(path[0]) && !(path.size() > 1 && isSeparator(path[1]));
  return rooted ? machine.windowsDirectory().substr(0, 2) + path : path;
}

}  // namespace

MachineFile findMachineFile(const std::string& windowsPath) {
  const Machine& machine = currentMachine();
  std::optional<WindowsPath> path = parseWindowsPath(onDrive(windowsPath, machine));
  if (!path) return {"", ERROR_FILE_NOT_FOUND};
  *path = redirected(*path, machine);
  if (std::optional<FileEntry> entry = machine.files().find(path->text())) {
    if (entry->directory) return {"", ERROR_ACCESS_DENIED};
    return {path->text(), ERROR_SUCCESS};
  }
  if (path->components.empty()) return {"", ERROR_PATH_NOT_FOUND};
  path->components.pop_back();
  bool inDirectory = machine.files().find(path->text()).has_value();
  return {"",
          static_cast<std::uint32_t>(inDirectory ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND)};
}

}  // namespace winapi
