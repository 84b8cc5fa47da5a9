// Writes committed instances as the JSON document users read.
#pragma once

#include <boost/shared_ptr.hpp>
#include <functional>
#include <string>
#include <vector>

#include "host/cim_interfaces.h"

namespace NZARVEK20 {

// Turns text of the machine's code page into UTF-8.
using TTextEncoder = std::function<std::string(const std::string&)>;

// {"namespace": ..., "instances": [{"class", "path", "properties"}...]}, in
// the order given; unset properties are left out.
std::string ExportJson(const std::string& namespaceName,
                       const std::vector<boost::shared_ptr<ICIMInstance>>& instances,
                       const TTextEncoder& toUtf8);

}  // namespace NZARVEK20
