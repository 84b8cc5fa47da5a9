// Case-blind comparisons of the collectors: names of users, keys and
// components.
#pragma once

#include <string>

namespace installedapps_col {

// `text` in lower case, byte by byte, by the global locale.
std::string lowerCase(std::string text);

}  // namespace installedapps_col
