// The host's entry points that a plug-in reaches without being handed them.
#pragma once

#include <boost/shared_ptr.hpp>

#include "host/cim_interfaces.h"
#include "host/logger.h"

namespace NZARVEK20 {

class TRootObject {
 public:
  // The plug-in manager (a TPluginManagerNamespace); callable while a
  // library is being loaded.
  static boost::shared_ptr<ICIMNamespace> GetPluginManager();
  // Valid at any time.
  static ILogger* GetCoreLogger();
};

}  // namespace NZARVEK20
