// The page files of the system, with their paths and sizes in bytes, as
// instances of QELTO_PageFile.
#pragma once

#include <map>
#include <string>

#include "frame/get_info.h"

namespace installedapps_col {

class PageFileInfo : public GetInfo {
 public:
  using GetInfo::GetInfo;

  // Path to size in pages. Paths compare byte by byte, so the instances
  // come in that order; the first size seen for a path stays.
  using PageFileList = std::map<std::string, unsigned long long>;

  // Commits one instance per page file as it goes; the result is always 0.
  int getCIMInstances() override;

  // FileSize is left out when the size in bytes comes to 0.
  static PropertyMap buildPageFileProperties(const std::string& name, unsigned long long pages,
                                             unsigned long long pageSize);
};

}  // namespace installedapps_col
