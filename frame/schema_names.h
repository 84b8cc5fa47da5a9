// Names of the schema that collectors of more than one folder use; a name
// only one folder uses lives in that folder.
#pragma once

namespace installedapps_col {
namespace constants {

// CIM classes.
constexpr const char* kComputerSystemClass = "QELTO_ComputerSystem";
constexpr const char* kOperatingSystemClass = "QELTO_OperatingSystem";

// Properties.
constexpr const char* kProductName = "ProductName";
constexpr const char* kProductVendor = "ProductVendor";
constexpr const char* kName = "Name";
constexpr const char* kCreationClassName = "CreationClassName";
constexpr const char* kVersion = "Version";

// The vendor of the operating system and its parts.
constexpr const char* kMicrosoftCorporation = "Microsoft Corporation";

// The roles of the associations, and the lookup option that asks for the
// classes as the plug-in's own.
constexpr const char* kGroupComponent = "GroupComponent";
constexpr const char* kPartComponent = "PartComponent";
constexpr const char* kPluginLookupOption = "nspID";
constexpr const char* kPluginLookupValue = "plugin";

}  // namespace constants
}  // namespace installedapps_col
