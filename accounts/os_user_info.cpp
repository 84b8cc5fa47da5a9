#include "accounts/os_user_info.h"

#include "accounts/account_names.h"
#include "frame/schema_names.h"
#include "host/os_specific.h"

namespace installedapps_col {

using namespace NZARVEK20;

int OSUserInfo::getCIMInstances() {
  getCIMClass();
  int count = 0;
  try {
    for (const PropertyMap& account : getAccountProperties()) {
      buildCIMInstance(account);
      ++count;
    }
  } catch (const TVRXException& e) {
    logger->logDebug(constants::kAccountInstanceError + std::to_string(e.GetStatusCode()));
    return 0;
  }
  return count;
}

AccountList OSUserInfo::getAccountProperties() {
  AccountList accounts = UserAccountReader().getAccounts();
  const PropertyMap common = getCommonProperties();
  // What an account has of its own stays.
  for (PropertyMap& account : accounts) account.insert(common.begin(), common.end());
  return accounts;
}

PropertyMap OSUserInfo::getCommonProperties() {
  PropertyMap common;
  try {
    const boost::shared_ptr<ICIMNamespace> ns = getCIMClass()->GetNamespace(TCIMOptions());
    common[constants::kCreationClassName] = TCIMValue(getCIMClass()->GetName(TCIMOptions()));
    common[constants::kSystemCreationClassName] =
        TCIMValue(TCIMSchemaHelper::GetSystemCreationClassName(ns));
    common[constants::kSystemName] = TCIMValue(TCIMSchemaHelper::GetSystemName(ns));
  } catch (const TVRXException& e) {
    logger->logError(e.what());
  }
  return common;
}

}  // namespace installedapps_col
