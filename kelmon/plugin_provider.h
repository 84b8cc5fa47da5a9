// The plug-in manager's record of one registered plug-in.
#pragma once

#include "host/plugin.h"

namespace NZARVEK20 {

class TPluginManagerProvider {
 public:
  explicit TPluginManagerProvider(IPluginCallbacks* callbacks) : callbacks_(callbacks) {}
  IPluginCallbacks* Callbacks() const { return callbacks_; }

 private:
  IPluginCallbacks* callbacks_;
};

}  // namespace NZARVEK20
