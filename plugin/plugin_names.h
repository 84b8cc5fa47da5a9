// The plug-in as the host knows it, the log lines of its lifecycle and of
// the dispatcher, and its one setting.
#pragma once

namespace installedapps_col {
namespace constants {

// The plug-in as the host knows it.
constexpr const char* kPluginName = "Installed Application Collector";
constexpr const char* kPluginVersion = "1.0";

// Log lines of the plug-in's lifecycle.
constexpr const char* kInitPrefix = "TInstalledAppsCallbacks::Init -";
constexpr const char* kInitText = "Initializing the plugin.";
constexpr const char* kDeInitPrefix = "TInstalledAppsCallbacks::DeInit -";
constexpr const char* kDeInitText = "De-Initializing the plugin.";
constexpr const char* kNormalExit = "Normal exit from plugin.";

// Log lines of the dispatcher.
constexpr const char* kExceptionCaught = "Exception caught ";
constexpr const char* kCollectingDataForClass = "Collecting data for class";

// The one setting: any text in it leaves the applications out.
constexpr const char* kExcludeAppsVariable = "VRX_EXCLUDEAPPS";

}  // namespace constants
}  // namespace installedapps_col
