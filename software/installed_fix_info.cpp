#include "software/installed_fix_info.h"

#include "frame/constants.h"
#include "host/os_specific.h"
#include "software/windows_fix_info.h"

namespace installedapps_col {

using namespace NZARVEK20;

int InstalledFixInfo::getCIMInstances() {
  const FactList records = WindowsFixInfo().getInfo();
  const PropertyMap keys = getKeyProperties();
  int count = 0;
  for (const FactMap& record : records) {
    try {
      PropertyMap values = getCIMProperties(record);
      values.insert(keys.begin(), keys.end());
      buildCIMInstance(values);
      ++count;
    } catch (const TVRXException& e) {
      logger->logDebug(std::string(constants::kFixInstancePrefix) +
                       constants::kErrorGeneratingInstances + " " +
                       std::to_string(e.GetStatusCode()));
    }
  }
  return count;
}

PropertyMap InstalledFixInfo::getKeyProperties() {
  return {{constants::kSystemID, TCIMValue(TOSSpecific::GetMachineName())},
          {constants::kCollectionID, TCIMValue("")}};
}

}  // namespace installedapps_col
