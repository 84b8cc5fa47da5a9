#include "winapi/machine/host_path.h"

#include <cctype>
#include <filesystem>
#include <vector>

#include "winapi/support/text.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

// The components after "X:", with "." dropped and ".." applied (never above the drive).
std::optional<std::vector<std::string>> componentsOf(const std::string& windowsPath) {
  if (windowsPath.size() < 2 || !std::isalpha(static_cast<unsigned char>(windowsPath[0])) ||
      windowsPath[1] != ':')
    return std::nullopt;
  if (windowsPath.size() > 2 && windowsPath[2] != '\\' && windowsPath[2] != '/')
    return std::nullopt;
  std::vector<std::string> components;
  std::size_t start = 2;
  while (start < windowsPath.size()) {
    std::size_t end = windowsPath.find_first_of("\\/", start + 1);
    std::string component =
        windowsPath.substr(start + 1, end == std::string::npos ? end : end - start - 1);
    if (component == "..") {
      if (!components.empty()) components.pop_back();
    } else if (!component.empty() && component != ".") {
      components.push_back(component);
    }
    start = end == std::string::npos ? windowsPath.size() : end;
  }
  return components;
}

}  // namespace

std::optional<fs::path> findEntry(const fs::path& directory, const std::string& name) {
  std::error_code error;
  if (fs::exists(directory / name, error)) return directory / name;
  for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error))
    if (equalsIgnoringCase(it->path().filename().string(), name)) return it->path();
  return std::nullopt;
}

std::optional<std::string> findHostPath(const std::string& machineDirectory,
                                        const std::string& windowsPath) {
  auto components = componentsOf(windowsPath);
  if (machineDirectory.empty() || !components) return std::nullopt;
  char drive = static_cast<char>(std::tolower(windowsPath[0]));
  auto path = findEntry(machineDirectory, std::string("drive_") + drive);
  // An offline volume has no drive_c/: its root is drive C:.
  if (!path && drive == 'c' && findEntry(machineDirectory, "Windows")) path = machineDirectory;
  for (std::size_t i = 0; path && i < components->size(); ++i)
    path = findEntry(*path, (*components)[i]);
  return path ? std::optional<std::string>(path->string()) : std::nullopt;
}

}  // namespace winapi
