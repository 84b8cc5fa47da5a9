// WOW64 file-system redirection: the file lookups that follow it.
#include "winapi/machine/fs_redirection.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

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

// "C:\a\.\b\..\c" -> {"C:", "a", "c"}; nullopt when the path is not drive-absolute.
std::optional<Components> componentsOf(const std::string& path) {
  if (path.size() < 2 || path[1] != ':' || (path.size() > 2 && !isSeparator(path[2])))
    return std::nullopt;
  Components components{path.substr(0, 2)};
  std::size_t start = 2;
  while (start < path.size()) {
    std::size_t end = start + 1;
    while (end < path.size() && !isSeparator(path[end])) ++end;
    std::string component = path.substr(start + 1, end - start - 1);
    if (component == "..") {
      if (components.size() > 1) components.pop_back();
    } else if (!component.empty() && component != ".") {
      components.push_back(component);
    }
    start = end;
  }
  return components;
}

std::string joined(const Components& components) {
  std::string path;
  for (const std::string& component : components) path += (path.empty() ? "" : "\\") + component;
  return path;
}

bool hasAt(const Components& path, const Components& part, std::size_t at) {
  if (path.size() < at + part.size()) return false;
  for (std::size_t i = 0; i < part.size(); ++i)
    if (!equalsIgnoringCase(path[at + i], part[i])) return false;
  return true;
}

Components redirected(Components path, const Machine& machine) {
  if (redirectionDisabled || !isWow64(machine)) return path;
  std::optional<Components> system32 = componentsOf(machine.windowsDirectory());
  if (!system32) return path;
  system32->push_back("System32");
  if (!hasAt(path, *system32, 0)) return path;
  for (const Components& shared : kSharedDirectories)
    if (hasAt(path, shared, system32->size())) return path;
  path[system32->size() - 1] = "SysWOW64";
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
  std::optional<Components> path = componentsOf(onDrive(windowsPath, machine));
  if (!path) return {"", ERROR_FILE_NOT_FOUND};
  *path = redirected(*path, machine);
  if (std::optional<std::string> host = machine.hostPath(joined(*path))) {
    std::error_code error;
    if (std::filesystem::is_directory(*host, error)) return {"", ERROR_ACCESS_DENIED};
    return {*host, ERROR_SUCCESS};
  }
  path->pop_back();
  bool inDirectory = !path->empty() && machine.hostPath(joined(*path));
  return {"",
          static_cast<std::uint32_t>(inDirectory ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND)};
}

}  // namespace winapi
