// Names and texts of the application and fix collectors: CIM classes and
// properties, registry keys, WMI queries, and the fixed parts of log lines.
#pragma once

namespace installedapps_col {
namespace constants {

// CIM classes and properties.
constexpr const char* kInstalledApplicationClass = "QELTO_InstalledApplication";
constexpr const char* kInstalledFixClass = "QELTO_InstalledFix";
constexpr const char* kProductIdentifyingNumber = "ProductIdentifyingNumber";
constexpr const char* kProductVersion = "ProductVersion";
constexpr const char* kProductInstallDate = "ProductInstallDate";
constexpr const char* kCollectionID = "CollectionID";
constexpr const char* kSystemID = "SystemID";

// Log lines of the application enumeration.
constexpr const char* kUnableToEnumerateSubKeys =
    "InstalledAppInfo::getInfo - Unable to enumerate the sub-keys of the desired key.";
constexpr const char* kUnableToListApplications =
    "InstalledAppInfo::getInfo - Unable to build a list of installed applications.";

// Registry keys of the applications.
constexpr const char* kUninstallKey = "SOFTWARE\\MICROSOFT\\WINDOWS\\CurrentVersion\\Uninstall";
constexpr const char* kUninstallWow64Key =
    "SOFTWARE\\WOW6432Node\\MICROSOFT\\WINDOWS\\CurrentVersion\\Uninstall";
constexpr const char* kInstallerProductsKey = "SOFTWARE\\Classes\\Installer\\Products";
constexpr const char* kHotfixKey = "SOFTWARE\\MICROSOFT\\WINDOWS NT\\CurrentVersion\\HotFix";

// Installed fixes: the registry walk, the vendor of every queried fix, and
// the log lines of both routes.
constexpr const char* kInstalledBy = "InstalledBy";
constexpr const char* kUpdatesKey = "SOFTWARE\\Microsoft\\Updates";
constexpr const char* kFixUninstallKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const char* kFileListMarker = "\\filelist";
constexpr const char* kFixVendor = "Microsoft Corporation";
constexpr const char* kFixInstancePrefix = "InstalledFixInfo::getCIMInstances ";
constexpr const char* kTryFixesFromRegistry =
    "WindowsFixInfo::getInfo(): try to get hot fixes from WMI.";
constexpr const wchar_t* kWmiNamespace = L"ROOT\\CIMV2";
constexpr const wchar_t* kWmiQueryLanguage = L"WQL";
constexpr const wchar_t* kFixQuery = L"SELECT * FROM Win32_QuickFixEngineering";
constexpr const char* kWmiDescriptionFound =
    "WindowsFixInfo::getPropertiesFromWMI(): Description found.";
constexpr const char* kWmiDescriptionNotString =
    "WindowsFixInfo::getPropertiesFromWMI(): Description is not String!";
constexpr const char* kWmiHotFixIdFound =
    "WindowsFixInfo::getPropertiesFromWMI(): Hot Fix ID found.";
constexpr const char* kWmiHotFixIdNotString =
    "WindowsFixInfo::getPropertiesFromWMI(): Hot Fix ID is not String!";
constexpr const char* kWmiInstallDateFound =
    "WindowsFixInfo::getPropertiesFromWMI(): Install Date Found!";
constexpr const char* kWmiInstallDateNotString =
    "WindowsFixInfo::getPropertiesFromWMI(): Install Date is not String!";
constexpr const char* kWmiInstalledByFound =
    "WindowsFixInfo::getPropertiesFromWMI(): InstalledBy found.";
constexpr const char* kWmiInstalledByNotString =
    "WindowsFixInfo::getPropertiesFromWMI(): InstalledBy is not String!";
constexpr const char* kWmiComFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Failed to Initialize COM.";
constexpr const char* kWmiSecurityFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Failed to initialize security. error code: ";
constexpr const char* kWmiLocatorFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Failed to create IWbemLocator object.";
constexpr const char* kWmiConnectFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Could not connect.";
constexpr const char* kWmiProxyBlanketFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Could not set proxy blanket.";
constexpr const char* kWmiQueryFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Query for Win32_QuickFixEngineering failed.";

}  // namespace constants
}  // namespace installedapps_col
