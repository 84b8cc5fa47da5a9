// The fixed parts of the log lines of the collector base, value building and
// date parsing.
#pragma once

namespace installedapps_col {
namespace constants {

// Log lines of the collector base.
constexpr const char* kFixingUpInstance = "Fixing up instance ...";
constexpr const char* kWithProperty = " with property";
constexpr const char* kErrorGeneratingInstances =
    "Encountered an error generating CIM instances. Error Code:";

// Log lines of value building and date parsing.
constexpr const char* kErrorProcessingProperty = "Error processing property ";
constexpr const char* kDatePrefix = "InstalledAppInfo::geNZARVEK20::TCIMValueForProperty ";
constexpr const char* kDateGeneratedIncorrectly =
    "Date time information was generated incorrectly.";
constexpr const char* kUnknownDateFormat = "Encountered an unknown date time format -> ";
constexpr const char* kDateFromSeconds = "GetInfo::getCIMDateTime -> dateAsLongMsg";
constexpr const char* kDateParsed = "Successfully parsed the date and/or time";
constexpr const char* kCompactDateTail = "000000.000000-000";

}  // namespace constants
}  // namespace installedapps_col
