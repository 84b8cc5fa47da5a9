#include <dlfcn.h>

#include <stdexcept>

#include "kelmon/library_loader.h"

namespace NZARVEK20 {

void TLibraryLoader::Load(const std::string& path) {
  // The library stays loaded for the life of the process: the host owns
  // objects whose code lives in it.
  if (!dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    const char* reason = dlerror();
    throw std::runtime_error(path +
                             ": cannot load the plug-in: " + (reason ? reason : "unknown reason"));
  }
}

}  // namespace NZARVEK20
