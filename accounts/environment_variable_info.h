// The environment variables stored in the registry, for the system and for
// the current user, and their association with the operating system.
#pragma once

#include "frame/get_info.h"

namespace installedapps_col {

// Serves both variable classes; its class's name says which.
class EnvironmentVariableInfo : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int getCIMInstances() override;
};

// Joins every operating system with every variable the repository holds.
class OSEnvironmentVariable : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int buildCIMAssociation(boost::shared_ptr<NZARVEK20::ICIMNamespace> ns) override;
};

}  // namespace installedapps_col
