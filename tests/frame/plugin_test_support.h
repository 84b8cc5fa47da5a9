// What the plug-in's tests share: a registered plug-in, the lines it logged
// and a machine environment to run against.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/registration.h"
#include "host/plugin.h"
#include "host/root_object.h"
#include "vrxcore/core_logger.h"

namespace installedapps_col {

// Captures every line given to the core logger from its making on.
class LogCapture {
 public:
  LogCapture() : sink_(std::make_shared<NZARVEK20::TMemoryLogSink>()) {
    NZARVEK20::TCoreLogger::Instance().RemoveSinks();
    NZARVEK20::TCoreLogger::Instance().AddSink(sink_, 4);
  }
  ~LogCapture() { NZARVEK20::TCoreLogger::Instance().RemoveSinks(); }
  const std::vector<std::pair<int, std::string>>& lines() const { return sink_->lines; }
  void clear() { sink_->lines.clear(); }

 private:
  std::shared_ptr<NZARVEK20::TMemoryLogSink> sink_;
};

inline NZARVEK20::TPluginManagerNamespace& pluginManager() {
  return dynamic_cast<NZARVEK20::TPluginManagerNamespace&>(
      *NZARVEK20::TRootObject::GetPluginManager());
}

// Registers the plug-in once per process, as loading the library would.
inline NZARVEK20::IPluginCallbacks& registeredPlugin() {
  if (pluginManager().GetPlugins().empty()) registerWithHost();
  return *pluginManager().GetPlugins().front();
}

}  // namespace installedapps_col
