#include "winapi/support/module_names.h"

#include "winapi/support/text.h"

namespace winapi {

std::string canonicalDllName(std::string_view name) {
  std::size_t slash = name.find_last_of("\\/");
  std::string file = asciiLower(slash == std::string_view::npos ? name : name.substr(slash + 1));
  if (!file.empty() && file.back() == '.') {
    file.pop_back();
    return file;
  }
  return file.find('.') == std::string::npos ? file + ".dll" : file;
}

}  // namespace winapi
