// Names and texts shared by the collectors: CIM classes and properties,
// registry paths, and the fixed parts of log lines.
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

// Log lines of the dispatcher and the collector base.
constexpr const char* kExceptionCaught = "Exception caught ";
constexpr const char* kCollectingDataForClass = "Collecting data for class";
constexpr const char* kFixingUpInstance = "Fixing up instance ...";
constexpr const char* kWithProperty = " with property";
constexpr const char* kErrorGeneratingInstances =
    "Encountered an error generating CIM instances. Error Code:";

// The one setting: any text in it leaves the applications out.
constexpr const char* kExcludeAppsVariable = "VRX_EXCLUDEAPPS";

// CIM classes.
constexpr const char* kComputerSystemClass = "QELTO_ComputerSystem";
constexpr const char* kInstalledApplicationClass = "QELTO_InstalledApplication";
constexpr const char* kInstalledFixClass = "QELTO_InstalledFix";
constexpr const char* kOperatingSystemClass = "QELTO_OperatingSystem";
constexpr const char* kTimeZoneClass = "QELTO_TimeZone";
constexpr const char* kPageFileClass = "QELTO_PageFile";
constexpr const char* kEnvironmentVariableClass = "QELTO_EnvironmentVariable";
constexpr const char* kSystemEnvironmentVariableClass = "QELTO_SystemEnvironmentVariable";
constexpr const char* kUserEnvironmentVariableClass = "QELTO_UserEnvironmentVariable";
constexpr const char* kOSEnvironmentVariableClass = "QELTO_OSEnvironmentVariable";
constexpr const char* kAccountClass = "QELTO_Account";
constexpr const char* kAccountOnSystemClass = "QELTO_AccountOnSystem";
constexpr const char* kCurrentAccountOnSystemClass = "QELTO_CurrentAccountOnSystem";
constexpr const char* kOSComponentClass = "QELTO_OSComponent";
constexpr const char* kOSBaseComponentClass = "QELTO_OSBaseComponent";
constexpr const char* kOSSubComponentClass = "QELTO_OSSubComponent";

}  // namespace constants
}  // namespace installedapps_col
