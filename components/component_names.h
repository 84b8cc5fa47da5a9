// Names and texts of the optional-component collectors: CIM classes and
// properties, setup files and keys, and the fixed parts of log lines.
#pragma once

namespace installedapps_col {
namespace constants {

// CIM classes.
constexpr const char* kOSComponentClass = "QELTO_OSComponent";
constexpr const char* kOSBaseComponentClass = "QELTO_OSBaseComponent";
constexpr const char* kOSSubComponentClass = "QELTO_OSSubComponent";

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

}  // namespace constants
}  // namespace installedapps_col
