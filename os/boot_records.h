// Reading the records a boot configuration is made of: the lines of a
// boot.ini file, and the elements of the boot configuration store.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "frame/log_message.h"
#include "frame/platform.h"

namespace installedapps_col {

// The non-blank lines of a boot.ini, in file order: at most 150 reads of
// at most 1023 characters each. A longer line ends the reading, after its
// first 1023 characters; every read is logged.
std::vector<std::string> readBootFileLines(std::istream& file, LogMessage& logger);

// The text of an element's data: a REG_SZ as it is, a REG_MULTI_SZ of
// GUIDs in braces as those GUIDs one behind the other; empty for any other
// type.
std::string bcdElementText(DWORD type, const char* data, DWORD size);

}  // namespace installedapps_col
