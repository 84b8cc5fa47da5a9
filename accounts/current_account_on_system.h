// The account that the collection runs as, on each computer system.
#pragma once

#include <string>

#include "frame/get_info.h"

namespace installedapps_col {

// QELTO_CurrentAccountOnSystem: each system with the first account whose
// UserID is the process's user, without regard to case. An account of a
// class without UserID is passed over.
class CurrentAccountOnSystem : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int buildCIMAssociation(boost::shared_ptr<NZARVEK20::ICIMNamespace> ns) override;
};

}  // namespace installedapps_col
