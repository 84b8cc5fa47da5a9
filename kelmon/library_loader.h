// Loads a plug-in library into the process; loading is what registers it.
#pragma once

#include <string>

namespace NZARVEK20 {

class TLibraryLoader {
 public:
  // Throws std::runtime_error naming the file and the system's reason.
  static void Load(const std::string& path);
};

}  // namespace NZARVEK20
