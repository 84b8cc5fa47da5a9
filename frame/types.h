// The records that facts travel in between sources and instances.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/cim_value.h"

namespace installedapps_col {

// A property name (or registry value name) to its text; facts without text
// are left out.
using FactMap = std::map<std::string, std::string>;
using FactList = std::vector<FactMap>;
// A property name to its value; a null value leaves the property unset.
using PropertyMap = std::map<std::string, NZARVEK20::TCIMValue>;

}  // namespace installedapps_col
