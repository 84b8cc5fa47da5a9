// The object the plug-in registers with the host: its name and versions,
// its lifecycle, and the collection callback.
#pragma once

#include "frame/log_message.h"
#include "host/plugin.h"

class TInstalledAppsCallbacks : public NZARVEK20::IPluginCallbacks,
                                public NZARVEK20::IPluginBasicQueryCallbacks {
 public:
  TInstalledAppsCallbacks() = default;
  ~TInstalledAppsCallbacks() override {}

  int ZeroAnswerQuery(const std::string& query) override;
  std::string GetPluginName() override;
  std::string GetFirstVersion() override;
  std::string GetSecondVersion() override;
  void Destroy() override;
  void Init() override;
  void DeInit() override;

  void OnBasicQuery(boost::shared_ptr<NZARVEK20::ICIMNamespace> outputNamespace,
                    const std::vector<boost::shared_ptr<NZARVEK20::ICIMClass>>& classes) override;

  NZARVEK20::TPluginManagerProvider* provider = nullptr;
  installedapps_col::LogMessage* logger = nullptr;
};
