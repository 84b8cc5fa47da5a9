// Facts of the machine the host runs on, as the host sees them.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "host/cim_datetime.h"
#include "host/cim_interfaces.h"

namespace NZARVEK20 {

class TOSSpecific {
 public:
  static std::string GetMachineName();
  static TCIMDateTime GetLocalTime();
  // Runs `commandLine` and returns what it printed; gives up after `limit`
  // seconds and returns what it had by then.
  static std::string SpawnProcess(std::string commandLine, int limit);
};

class TCIMSchemaHelper {
 public:
  // The key values by which the instances of `ns` name the computer system
  // they belong to.
  static std::string GetSystemName(boost::shared_ptr<ICIMNamespace> ns);
  static std::string GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns);
};

}  // namespace NZARVEK20
