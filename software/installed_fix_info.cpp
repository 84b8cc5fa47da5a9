#include "software/installed_fix_info.h"

#include "host/os_specific.h"
#include "software/software_names.h"
#include "software/windows_fix_info.h"

namespace installedapps_col {

using namespace NZARVEK20;

int InstalledFixInfo::getCIMInstances() {
  return buildInstancesFromRecords(WindowsFixInfo().getInfo(), getKeyProperties(),
                                   constants::kFixInstancePrefix);
}

PropertyMap InstalledFixInfo::getKeyProperties() {
  return {{constants::kSystemID, TCIMValue(TOSSpecific::GetMachineName())},
          {constants::kCollectionID, TCIMValue("")}};
}

}  // namespace installedapps_col
