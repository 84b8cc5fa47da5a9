#include "plugin/callbacks.h"

#include "plugin/plugin_names.h"
#include "plugin/system_information.h"

using namespace installedapps_col;

int TInstalledAppsCallbacks::ZeroAnswerQuery(const std::string&) { return 0; }

std::string TInstalledAppsCallbacks::GetPluginName() { return constants::kPluginName; }

std::string TInstalledAppsCallbacks::GetFirstVersion() { return constants::kPluginVersion; }

std::string TInstalledAppsCallbacks::GetSecondVersion() { return constants::kPluginVersion; }

void TInstalledAppsCallbacks::Destroy() { delete this; }

void TInstalledAppsCallbacks::Init() {
  LogMessage::getInstance()->logDebug(std::string(constants::kInitPrefix) + constants::kInitText);
}

void TInstalledAppsCallbacks::DeInit() {
  LogMessage::getInstance()->logDebug(std::string(constants::kDeInitPrefix) +
                                      constants::kDeInitText);
}

void TInstalledAppsCallbacks::OnBasicQuery(
    boost::shared_ptr<NZARVEK20::ICIMNamespace> outputNamespace,
    const std::vector<boost::shared_ptr<NZARVEK20::ICIMClass>>& classes) {
  SystemInformation dispatcher(outputNamespace);
  for (const auto& cimClass : classes) dispatcher.collectClass(cimClass);
  LogMessage::getInstance()->logDebug(constants::kNormalExit);
}
