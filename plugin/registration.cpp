#include "plugin/registration.h"

#include <memory>
#include <new>

#include "host/root_object.h"
#include "plugin/callbacks.h"

namespace installedapps_col {

bool registerWithHost() {
  std::unique_ptr<TInstalledAppsCallbacks> callbacks(new (std::nothrow) TInstalledAppsCallbacks);
  if (!callbacks) return false;
  NZARVEK20::TPluginManagerProvider* provider = nullptr;
  {
    boost::shared_ptr<NZARVEK20::ICIMNamespace> root = NZARVEK20::TRootObject::GetPluginManager();
    auto manager = boost::dynamic_pointer_cast<NZARVEK20::TPluginManagerNamespace>(root);
    provider = manager->RegisterPlugin(callbacks.get());
  }
  TInstalledAppsCallbacks* registered = callbacks.release();  // the host owns it now
  registered->provider = provider;
  LogMessage::setProvider(provider);
  registered->logger = LogMessage::getInstance();
  return true;
}

}  // namespace installedapps_col
