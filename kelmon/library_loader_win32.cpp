#include <windows.h>

#include <stdexcept>

#include "kelmon/library_loader.h"

namespace NZARVEK20 {

void TLibraryLoader::Load(const std::string& path) {
  // The library stays loaded for the life of the process: the host owns
  // objects whose code lives in it.
  if (!LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
    throw std::runtime_error(path + ": cannot load the plug-in: Windows error " +
                             std::to_string(GetLastError()));
}

}  // namespace NZARVEK20
