// The collector of QELTO_OperatingSystem: one instance, merged from the
// naming properties and the five fact sources of the operating system.
#pragma once

#include <string>

#include "frame/get_info.h"

namespace installedapps_col {

class OSInfo : public GetInfo {
 public:
  using GetInfo::GetInfo;
  // 1 when the instance was committed, 0 after an error of the host.
  int getCIMInstances() override;

  // Every source's properties; a source that fails just adds none.
  PropertyMap getOSProperties();
  // CSName, Name, CSCreationClassName and CreationClassName, as far as
  // they could be had.
  PropertyMap getKeyProperties();
};

// The log line of a host error that cost the operating-system classes
// their instance.
std::string instanceErrorText(const NZARVEK20::TVRXException& error);

}  // namespace installedapps_col
