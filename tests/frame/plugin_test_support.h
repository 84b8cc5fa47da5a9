// What the plug-in's tests share: a registered plug-in, the lines it logged
// and a machine environment to run against.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/plugin.h"
#include "host/root_object.h"
#include "plugin/registration.h"
#include "tests/winapi/test_machine.h"
#include "vrxcore/core_logger.h"
#include "vrxcore/mof_loader.h"
#include "winapi/machine/machine.h"

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

// A described machine whose registry is `reg` (the body of a regedit file)
// and whose machine.json is `description`, current while the object lives.
class RegistryMachine {
 public:
  explicit RegistryMachine(const std::string& reg,
                           const nlohmann::json& description = nlohmann::json::object()) {
    dir_.write("machine.json", description.dump());
    dir_.write("registry/10-test.reg", "Windows Registry Editor Version 5.00\r\n\r\n" + reg);
    winapi::setCurrentMachine(winapi::Machine::load(dir_.path()));
  }
  ~RegistryMachine() { winapi::setCurrentMachine(nullptr); }

 private:
  TempDirectory dir_;
};

// The shipped schema, in a namespace of its own.
inline boost::shared_ptr<NZARVEK20::TRepositoryNamespace> makeSchemaNamespace() {
  auto ns = NZARVEK20::TRepositoryNamespace::Create("root/qelto");
  NZARVEK20::LoadMofFile(*ns, VRX_SCHEMA_FILE);
  return ns;
}

// The values of one property over the instances of a namespace, in commit
// order; unset values read as "".
inline std::vector<std::string> propertyValues(NZARVEK20::TRepositoryNamespace& ns,
                                               const std::string& property) {
  std::vector<std::string> values;
  for (const auto& instance : ns.GetInstances())
    values.push_back(instance->GetProperty(property, {})->GetValue({}));
  return values;
}

}  // namespace installedapps_col
