// Names and texts of the operating-system, time-zone and page-file
// collectors: CIM classes and properties, registry keys and boot store
// objects, and the fixed parts of log lines.
#pragma once

namespace installedapps_col {
namespace constants {

// CIM classes.
constexpr const char* kTimeZoneClass = "QELTO_TimeZone";
constexpr const char* kPageFileClass = "QELTO_PageFile";

// The operating system: naming, time, memory and performance properties.
constexpr const char* kCSName = "CSName";
constexpr const char* kCSCreationClassName = "CSCreationClassName";
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
constexpr const char* kCollectingBootProperties =
    "Collecting Boot Configuration File Properties...";
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

// Page files: the size property and the log lines.
constexpr const char* kFileSize = "FileSize";
constexpr const char* kNoEnumPageFiles =
    "PageFileInfo::getPagefileInfo cannot retrieve EnumPageFilesA Function from psapi.dll.";
constexpr const char* kPageFileErrorPrefix =
    "PageFileInfo::buildCIMInstances Encountered an error ";

}  // namespace constants
}  // namespace installedapps_col
