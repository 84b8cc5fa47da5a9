#include "winapi/files/windows_path.h"

#include <cctype>

namespace winapi {

namespace {

bool isSeparator(char c) { return c == '\\' || c == '/'; }

}  // namespace

std::string WindowsPath::text() const {
  std::string path{static_cast<char>(std::toupper(static_cast<unsigned char>(drive))), ':'};
  for (const std::string& component : components) path += "\\" + component;
  return components.empty() ? path + "\\" : path;
}

std::optional<WindowsPath> parseWindowsPath(const std::string& text) {
  if (text.size() < 2 || !std::isalpha(static_cast<unsigned char>(text[0])) || text[1] != ':' ||
      (text.size() > 2 && !isSeparator(text[2])))
    return std::nullopt;
  WindowsPath path;
  path.drive = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  std::size_t start = 2;
  while (start < text.size()) {
    std::size_t end = start + 1;
    while (end < text.size() && !isSeparator(text[end])) ++end;
    std::string component = text.substr(start + 1, end - start - 1);
    if (component == "..") {
      if (!path.components.empty()) path.components.pop_back();
    } else if (!component.empty() && component != ".") {
      path.components.push_back(component);
    }
    start = end;
  }
  return path;
}

}  // namespace winapi
