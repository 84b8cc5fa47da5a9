// Drive-absolute Windows paths taken apart as Windows resolves them: "." dropped, ".." applied
// (never above the drive), '\\' and '/' both separating.
#ifndef VRX_WINAPI_WINDOWS_PATH_H
#define VRX_WINAPI_WINDOWS_PATH_H

#include <optional>
#include <string>
#include <vector>

namespace winapi {

struct WindowsPath {
  char drive = 'c';  // in lower case
  std::vector<std::string> components;

  // "C:\\a\\b"; "C:\\" for the root.
  std::string text() const;
};

// nullopt when the text is not drive-absolute ("C:\\…", "C:/…" or "C:").
std::optional<WindowsPath> parseWindowsPath(const std::string& text);

}  // namespace winapi

#endif
