#include "host/root_object.h"

#include "host/plugin.h"
#include "vrxcore/core_logger.h"

namespace NZARVEK20 {

boost::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() {
  // Made on first use, so that a library that registers while it is being
  // loaded finds it whatever the order of static initialisation; kept for
  // the life of the process, like the plug-ins it owns.
  static auto* manager =
      new boost::shared_ptr<TPluginManagerNamespace>(new TPluginManagerNamespace);
  return *manager;
}

ILogger* TRootObject::GetCoreLogger() { return &TCoreLogger::Instance(); }

}  // namespace NZARVEK20
