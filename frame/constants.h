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

// Log lines of value building and date parsing.
constexpr const char* kErrorProcessingProperty = "Error processing property ";
constexpr const char* kDatePrefix = "InstalledAppInfo::geNZARVEK20::TCIMValueForProperty ";
constexpr const char* kDateGeneratedIncorrectly = "Date time information was generated incorrectly.";
constexpr const char* kUnknownDateFormat = "Encountered an unknown date time format -> ";
constexpr const char* kDateFromSeconds = "GetInfo::getCIMDateTime -> dateAsLongMsg";
constexpr const char* kDateParsed = "Successfully parsed the date and/or time";
constexpr const char* kCompactDateTail = "000000.000000-000";

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

// Properties.
constexpr const char* kSettingID = "SettingID";
constexpr const char* kSettingValue = "SettingValue";
constexpr const char* kElement = "Element";
constexpr const char* kSetting = "Setting";

constexpr const char* kProductIdentifyingNumber = "ProductIdentifyingNumber";
constexpr const char* kProductName = "ProductName";
constexpr const char* kProductVersion = "ProductVersion";
constexpr const char* kProductInstallDate = "ProductInstallDate";
constexpr const char* kProductVendor = "ProductVendor";
constexpr const char* kCollectionID = "CollectionID";
constexpr const char* kSystemID = "SystemID";

// Log lines of the application enumeration.
constexpr const char* kUnableToEnumerateSubKeys =
    "InstalledAppInfo::getInfo - Unable to enumerate the sub-keys of the desired key.";
constexpr const char* kUnableToListApplications =
    "InstalledAppInfo::getInfo - Unable to build a list of installed applications.";

// Registry keys.
constexpr const char* kSystemEnvironmentKey =
    "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";
constexpr const char* kUserEnvironmentKey = "Environment";
constexpr const char* kUninstallKey = "SOFTWARE\\MICROSOFT\\WINDOWS\\CurrentVersion\\Uninstall";
constexpr const char* kUninstallWow64Key =
    "SOFTWARE\\WOW6432Node\\MICROSOFT\\WINDOWS\\CurrentVersion\\Uninstall";
constexpr const char* kInstallerProductsKey = "SOFTWARE\\Classes\\Installer\\Products";
constexpr const char* kHotfixKey = "SOFTWARE\\MICROSOFT\\WINDOWS NT\\CurrentVersion\\HotFix";

// The operating system: naming, time, memory and performance properties.
constexpr const char* kCSName = "CSName";
constexpr const char* kName = "Name";
constexpr const char* kCSCreationClassName = "CSCreationClassName";
constexpr const char* kCreationClassName = "CreationClassName";
constexpr const char* kLastBootUpTime = "LastBootUpTime";
constexpr const char* kUpTime = "UpTime";
constexpr const char* kMemoryLoad = "MemoryLoad";
constexpr const char* kTotalVisibleMemorySize = "TotalVisibleMemorySize";
constexpr const char* kFreePhysicalMemory = "FreePhysicalMemory";
constexpr const char* kSizeStoredInPagingFiles = "SizeStoredInPagingFiles";
constexpr const char* kFreeSpaceInPagingFiles = "FreeSpaceInPagingFiles";
constexpr const char* kTotalVirtualMemorySize = "TotalVirtualMemorySize";
constexpr const char* kFreeVirtualMemory = "FreeVirtualMemory";
constexpr const char* kHandleCount = "HandleCount";
constexpr const char* kProcessCount = "ProcessCount";
constexpr const char* kThreadCount = "ThreadCount";
constexpr const char* kCommitTotal = "CommitTotal";
constexpr const char* kCommitLimit = "CommitLimit";
constexpr const char* kCommitPeak = "CommitPeak";
constexpr const char* kPhysicalTotal = "PhysicalTotal";
constexpr const char* kPhysicalAvailable = "PhysicalAvailable";
constexpr const char* kSystemCache = "SystemCache";
constexpr const char* kKernelTotal = "KernelTotal";
constexpr const char* kKernelPaged = "KernelPaged";
constexpr const char* kKernelNonpaged = "KernelNonpaged";
constexpr const char* kPageSize = "PageSize";

// The operating system: product, edition and boot configuration properties.
constexpr const char* kProductID = "ProductID";
constexpr const char* kVersion = "Version";
constexpr const char* kInstallDate = "InstallDate";
constexpr const char* kRegisteredOwner = "RegisteredOwner";
constexpr const char* kBuildID = "BuildID";
constexpr const char* kOSType = "OSType";
constexpr const char* kOSSubType = "OSSubType";
constexpr const char* kFixLevel = "FixLevel";
constexpr const char* kBootConfigurationFileName = "BootConfigurationFileName";
constexpr const char* kBootConfigurationFileContents = "BootConfigurationFileContents";

// The time zone.
constexpr const char* kTheTimeZone = "TheTimeZone";
constexpr const char* kLocalDateTime = "LocalDateTime";
constexpr const char* kDaylightSaving = "DaylightSaving";
constexpr const char* kGMTDateTime = "GMTDateTime";

// Fixed values of the operating system.
constexpr const char* kMicrosoftCorporation = "Microsoft Corporation";
constexpr const char* kNoServicePacks = "No service packs installed";
constexpr const char* kWindowsBootManager = "Windows Boot Manager";

// Log lines of the operating-system collectors.
constexpr const char* kOSInfoErrorPrefix = "OSInfo::getCIMInstances Encountered an error ";
constexpr const char* kVistaDetected = "Windows Vista detected.";
constexpr const char* kLonghornDetected = "Windows Longhorn detected.";
constexpr const char* kMiniNTFound = "MiniNT key found in registry, consider it as Windows PE.";
constexpr const char* kServicePack = "Service Pack:";
constexpr const char* kFixLevelSize = "Size of Fix Level:";
constexpr const char* kAddingFixLevel = "Did not find fix level, adding property";
constexpr const char* kCollectingBootProperties = "Collecting Boot Configuration File Properties...";
constexpr const char* kNoSystemDrive = "Could not find environmental variable systemroot.";
constexpr const char* kBootIniNotOpened = "Could not open Boot.ini file.";
constexpr const char* kBootIniPass = "Exiting boot.ini info collection routine....2";
constexpr const char* kBootIniDone = "Exiting boot.ini info collection routine....";

// Labels of the boot configuration blocks read from the BCD store.
constexpr const char* kInstalledOSLabel = "Installed OS :";
constexpr const char* kBootManagerLabel = "Windows Boot Manager: ";
constexpr const char* kMemoryTestLabel = "Memory Test: ";
constexpr const char* kResumeLabel = "Windows Resume: ";
constexpr const char* kLocationLabel = "Location: ";

// Registry keys and objects of the operating system.
constexpr const char* kCurrentVersionKey = "SOFTWARE\\MICROSOFT\\WINDOWS NT\\CurrentVersion";
constexpr const char* kR2SetupKey = "SOFTWARE\\MICROSOFT\\WINDOWS\\CurrentVersion\\R2Setup";
constexpr const char* kMiniNTKey = "SYSTEM\\CurrentControlSet\\Control\\MiniNT";
constexpr const char* kBcdObjectsKey = "BCD00000000\\Objects\\";
constexpr const char* kBcdElementsKey = "\\Elements\\";
constexpr const char* kBcdElementValue = "Element";
constexpr const char* kBootManagerObject = "{9dea862c-5cdd-4e70-acc1-f32b344d4795}";
constexpr const char* kMemoryTestObject = "{b2721d73-1db4-4c62-bf78-c548a880142d}";
constexpr const char* kBcdDisplayOrder = "24000001";
constexpr const char* kBcdDescription = "12000004";
constexpr const char* kBcdResumeObject = "23000006";
constexpr const char* kBcdApplicationPath = "12000002";

// The performance counter of the time since the system started.
constexpr const char* kSystemCounterObject = "System";
constexpr const char* kSystemUpTimeCounter = "System Up Time";

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

// The roles of the account associations, and the lookup option that asks
// for the classes as the plug-in's own.
constexpr const char* kGroupComponent = "GroupComponent";
constexpr const char* kPartComponent = "PartComponent";
constexpr const char* kPluginLookupOption = "nspID";
constexpr const char* kPluginLookupValue = "plugin";

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
constexpr const char* kWmiHotFixIdFound = "WindowsFixInfo::getPropertiesFromWMI(): Hot Fix ID found.";
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
constexpr const char* kWmiConnectFailed = "WindowsFixInfo::getPropertiesFromWMI() Could not connect.";
constexpr const char* kWmiProxyBlanketFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Could not set proxy blanket.";
constexpr const char* kWmiQueryFailed =
    "WindowsFixInfo::getPropertiesFromWMI() Query for Win32_QuickFixEngineering failed.";

// Optional components: the setup files that list them, the key of their
// installed states, their properties and the backup program.
constexpr const char* kSysocInf = "sysoc.inf";
constexpr const char* kComponentsSection = "Components";
constexpr const char* kOptionalComponentsSection = "optional components";
constexpr const char* kOptionDescKey = "optiondesc";
constexpr const char* kTipKey = "tip";
constexpr const char* kParentKey = "parent";
constexpr const char* kInfSubdirectory = "\\inf";
constexpr const char* kSetupSubdirectory = "\\Setup\\";
constexpr const char* kOcManagerKey =
    "SOFTWARE\\MICROSOFT\\WINDOWS\\CurrentVersion\\Setup\\Oc Manager\\Subcomponents";
constexpr const char* kTip = "Tip";
constexpr const char* kParent = "Parent";
constexpr const char* kVendor = "Vendor";
constexpr const char* kIdentifyingNumber = "IdentifyingNumber";
constexpr const char* kDLLName = "DLLName";
constexpr const char* kINFName = "INFName";
constexpr const char* kComponentInstalled = "ComponentInstalled";
constexpr const char* kHidden = "Hidden";
constexpr const char* kBackupProgram = "ntbackup.exe";
constexpr const char* kBackupInstalled = "2";

// Log lines of the optional components.
constexpr const char* kNoComponentSections =
    "OsComponentInfo::getINFFileList Sysoc.inf File has no Component sections";
constexpr const char* kInfPrefix = "OsComponentInfo::getInfo ";
constexpr const char* kInfMissing = " cannot be parsed because file does not exist. ";
constexpr const char* kComponentInstancePrefix = "OSComponentInfo::getCIMInstances ";
constexpr const char* kPathSearchPrefix = "OsComponentInfo::findDllInSysPath ";
constexpr const char* kNotInPath =
    " cannot be found in the directories of the system PATH variable to obtain the version.";
constexpr const char* kBackupNameLabel = "bpName = ";
constexpr const char* kBackupVersionLabel = "version = ";
constexpr const char* kParentMissing =
    "OSSubComponent::buildCIMAssociation During SoftwareFeatureComponent Association can't find "
    "parent with ID ";

// Page files: the size property and the log lines.
constexpr const char* kFileSize = "FileSize";
constexpr const char* kNoEnumPageFiles =
    "PageFileInfo::getPagefileInfo cannot retrieve EnumPageFilesA Function from psapi.dll.";
constexpr const char* kPageFileErrorPrefix = "PageFileInfo::buildCIMInstances Encountered an error ";

}  // namespace constants
}  // namespace installedapps_col
