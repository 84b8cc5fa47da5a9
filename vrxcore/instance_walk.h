// What every exporter reads from committed instances.
#pragma once

#include <boost/shared_ptr.hpp>
#include <functional>
#include <string>
#include <vector>

#include "host/cim_interfaces.h"

namespace NZARVEK20 {

// Turns text of the machine's code page into UTF-8.
using TTextEncoder = std::function<std::string(const std::string&)>;

using TInstances = std::vector<boost::shared_ptr<ICIMInstance>>;

// Every property the class declares, set or not, in the class's order.
std::vector<boost::shared_ptr<ICIMProperty>> PropertiesOf(ICIMInstance& instance);

// The key property names in the class's order.
std::vector<std::string> KeyNamesOf(ICIMClass& cimClass);

// The text form of a scalar (a reference as its object path), with strings
// converted to UTF-8; the empty string for null.
std::string ScalarText(const TCIMValue& value, const TTextEncoder& toUtf8);

}  // namespace NZARVEK20
