#include "winapi/formats/pdh_paths.h"

#include <charconv>

namespace winapi {

namespace {

constexpr std::string_view kMachinePrefix = "\\\\";

std::string formatInstance(const CounterPath& path) {
  std::string text = "(";
  if (!path.parentInstance.empty()) text += path.parentInstance + "/";
  text += *path.instance;
  if (path.instanceIndex != 0) text += "#" + std::to_string(path.instanceIndex);
  return text + ")";
}

// "parent/instance#index" into `path`; a '#' without a number after it is part of the name.
void parseInstance(std::string_view text, CounterPath& path) {
  std::size_t slash = text.find('/');
  if (slash != std::string_view::npos) {
    path.parentInstance = std::string(text.substr(0, slash));
    text.remove_prefix(slash + 1);
  }
  std::size_t hash = text.rfind('#');
  if (hash != std::string_view::npos) {
    const char* first = text.data() + hash + 1;
    const char* last = text.data() + text.size();
    auto [end, error] = std::from_chars(first, last, path.instanceIndex);
    if (first != last && error == std::errc() && end == last)
      text = text.substr(0, hash);
    else
      path.instanceIndex = 0;
  }
  path.instance = std::string(text);
}

// Where the object part that starts `text` ends: at the first backslash outside parentheses.
std::size_t objectEnd(std::string_view text) {
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')') --depth;
    if (text[i] == '\\' && depth == 0) return i;
  }
  return std::string_view::npos;
}

bool parseObject(std::string_view text, CounterPath& path) {
  std::size_t open = text.find('(');
  if (open == std::string_view::npos) {
    path.object = std::string(text);
    return !text.empty();
  }
  if (open == 0 || text.back() != ')') return false;
  path.object = std::string(text.substr(0, open));
  parseInstance(text.substr(open + 1, text.size() - open - 2), path);
  return true;
}

}  // namespace

std::string formatCounterPath(const CounterPath& path) {
  std::string text;
  if (!path.machine.empty()) text += std::string(kMachinePrefix) + path.machine;
  text += "\\" + path.object;
  if (path.instance) text += formatInstance(path);
  return text + "\\" + path.counter;
}

std::optional<CounterPath> parseCounterPath(std::string_view text) {
  CounterPath path;
  if (text.substr(0, kMachinePrefix.size()) == kMachinePrefix) {
    text.remove_prefix(kMachinePrefix.size());
    std::size_t end = text.find('\\');
    if (end == 0 || end == std::string_view::npos) return std::nullopt;
    path.machine = std::string(text.substr(0, end));
    text.remove_prefix(end);
  }
  if (text.empty() || text[0] != '\\') return std::nullopt;
  text.remove_prefix(1);
  std::size_t end = objectEnd(text);
  if (end == std::string_view::npos || end + 1 == text.size()) return std::nullopt;
  if (!parseObject(text.substr(0, end), path)) return std::nullopt;
  path.counter = std::string(text.substr(end + 1));
  return path;
}

}  // namespace winapi
