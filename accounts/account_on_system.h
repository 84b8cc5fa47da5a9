// Every account on every computer system.
#pragma once

#include "frame/get_info.h"

namespace installedapps_col {

// QELTO_AccountOnSystem: one instance per pair. Any failure of the host
// goes on to the dispatcher.
class AccountOnSystem : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int buildCIMAssociation(boost::shared_ptr<NZARVEK20::ICIMNamespace> ns) override;
};

}  // namespace installedapps_col
