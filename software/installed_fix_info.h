// The fixes of Windows as instances of QELTO_InstalledFix.
#pragma once

#include "frame/get_info.h"

namespace installedapps_col {

class InstalledFixInfo : public GetInfo {
 public:
  using GetInfo::GetInfo;

  // A record that cannot become an instance is logged and skipped.
  int getCIMInstances() override;
  // SystemID (the machine's name) and CollectionID ("").
  PropertyMap getKeyProperties();
};

}  // namespace installedapps_col
