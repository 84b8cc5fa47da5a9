// Names and texts of the account and environment-variable collectors: CIM
// classes and properties, registry keys, and the fixed parts of log lines.
#pragma once

namespace installedapps_col {
namespace constants {

// CIM classes.
constexpr const char* kEnvironmentVariableClass = "QELTO_EnvironmentVariable";
constexpr const char* kSystemEnvironmentVariableClass = "QELTO_SystemEnvironmentVariable";
constexpr const char* kUserEnvironmentVariableClass = "QELTO_UserEnvironmentVariable";
constexpr const char* kOSEnvironmentVariableClass = "QELTO_OSEnvironmentVariable";
constexpr const char* kAccountClass = "QELTO_Account";
constexpr const char* kAccountOnSystemClass = "QELTO_AccountOnSystem";
constexpr const char* kCurrentAccountOnSystemClass = "QELTO_CurrentAccountOnSystem";

// Properties.
constexpr const char* kSettingID = "SettingID";
constexpr const char* kSettingValue = "SettingValue";
constexpr const char* kElement = "Element";
constexpr const char* kSetting = "Setting";

// Registry keys of the stored environment variables.
constexpr const char* kSystemEnvironmentKey =
    "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";
constexpr const char* kUserEnvironmentKey = "Environment";

// Accounts: properties, the process environment that names the present
// user, and the collector's log line (with nine tabs inside it).
constexpr const char* kUserID = "UserID";
constexpr const char* kLastLogon = "LastLogon";
constexpr const char* kHost = "Host";
constexpr const char* kLocalityName = "LocalityName";
constexpr const char* kDescriptions = "Descriptions";
constexpr const char* kAccountEnabled = "AccountEnabled";
constexpr const char* kRequiresPassword = "RequiresPassword";
constexpr const char* kUserCanChangePassword = "UserCanChangePassword";
constexpr const char* kPasswordExpired = "PasswordExpired";
constexpr const char* kPasswordAge = "PasswordAge";
constexpr const char* kHomeDirectory = "HomeDirectory";
constexpr const char* kLogonServer = "LogonServer";
constexpr const char* kDomain = "Domain";
constexpr const char* kSystemCreationClassName = "SystemCreationClassName";
constexpr const char* kSystemName = "SystemName";
constexpr const char* kUserNameVariable = "USERNAME";
constexpr const char* kUserProfileVariable = "USERPROFILE";
constexpr const char* kUserDomainVariable = "USERDOMAIN";
constexpr const char* kAccountInstanceError =
    "OSUserInfo::getCIMInstances Encountered an error\t\t\t\t\t\t\t\t\t"
    "generating CIM instance. Error Code: ";

}  // namespace constants
}  // namespace installedapps_col
