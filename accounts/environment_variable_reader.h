// The environment variables the registry stores, for the machine and for the
// current user.
#pragma once

#include <string>
#include <vector>

#include "frame/types.h"

namespace installedapps_col {

class EnvironmentVariableReader {
 public:
  // One record (SettingID, SettingValue) per variable with text: the
  // machine's variables for QELTO_SystemEnvironmentVariable, the current
  // user's for any other class.
  std::vector<PropertyMap> read(const std::string& className);
};

}  // namespace installedapps_col
