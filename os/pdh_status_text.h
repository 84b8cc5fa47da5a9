// The log text of a performance-counter status.
#pragma once

#include <string>

namespace installedapps_col {

// The status's name and meaning; a status without a row is given by its
// number, as a signed decimal.
std::string pdhStatusText(unsigned int status);

}  // namespace installedapps_col
