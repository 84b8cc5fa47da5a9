// Wide text of the platform in the system's ANSI code page, where it
// enters the plug-in.
#pragma once

#include <string>

#include "frame/platform.h"

namespace installedapps_col {

// `length` characters of `text`, or up to its terminator when -1; the
// empty string for a null text or one that converts to nothing.
std::string narrowString(const WCHAR* text, int length = -1);

}  // namespace installedapps_col
