#include "os/os_info.h"

#include "frame/frame_texts.h"
#include "frame/schema_names.h"
#include "host/os_specific.h"
#include "os/memory_utilization.h"
#include "os/os_configuration.h"
#include "os/os_names.h"
#include "os/os_performance_params.h"
#include "os/os_product_info.h"
#include "os/os_time_info.h"

namespace installedapps_col {

using namespace NZARVEK20;

std::string instanceErrorText(const TVRXException& error) {
  return std::string(constants::kOSInfoErrorPrefix) + constants::kErrorGeneratingInstances + " " +
         std::to_string(error.GetStatusCode());
}

int OSInfo::getCIMInstances() {
  try {
    const std::string name = getCIMClass()->GetName(TCIMOptions());
    PropertyMap values;
    if (name == constants::kOperatingSystemClass) values = getOSProperties();
    buildCIMInstance(values);
    return 1;
  } catch (const TVRXException& e) {
    logger->logDebug(instanceErrorText(e));
    return 0;
  }
}

PropertyMap OSInfo::getOSProperties() {
  // Braced elements are made in order: the sources are asked in this order.
  const PropertyMap sources[] = {
      OSTimeInfo().getTimeProperties(),
      MemoryUtilization().getMemoryProperties(),
      OSPerformanceParams().getPerformanceProperties(),
      OSProductInfo(getCIMClass()).getProductProperties(),
      getKeyProperties(),
      OSConfiguration().getBootProperties(),
  };
  PropertyMap values;
  for (const PropertyMap& source : sources) values.insert(source.begin(), source.end());
  return values;
}

PropertyMap OSInfo::getKeyProperties() {
  PropertyMap keys;
  try {
    const boost::shared_ptr<ICIMClass> cls = getCIMClass();
    const boost::shared_ptr<ICIMNamespace> ns = cls->GetNamespace(TCIMOptions());
    keys[constants::kCSName] = TCIMValue(TCIMSchemaHelper::GetSystemName(ns));
    keys[constants::kName] = TCIMValue(TOSSpecific::GetMachineName());
    keys[constants::kCSCreationClassName] = TCIMValue(constants::kComputerSystemClass);
    keys[constants::kCreationClassName] = TCIMValue(cls->GetName(TCIMOptions()));
  } catch (const TVRXException& e) {
    logger->logError(e.what());
  }
  return keys;
}

}  // namespace installedapps_col
