// The logged-on accounts as instances of QELTO_Account.
#pragma once

#include "accounts/user_account_reader.h"
#include "frame/get_info.h"

namespace installedapps_col {

class OSUserInfo : public GetInfo {
 public:
  using GetInfo::GetInfo;

  // All or nothing in its result: a failed account makes it 0, though the
  // accounts committed before stay.
  int getCIMInstances() override;
  // The accounts, each with the properties that name its class and system.
  AccountList getAccountProperties();
  // CreationClassName, SystemCreationClassName and SystemName, as many of
  // them as the host could give.
  PropertyMap getCommonProperties();
};

}  // namespace installedapps_col
