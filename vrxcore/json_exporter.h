// Writes committed instances as the JSON document users read.
#pragma once

#include <string>

#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

// {"namespace": ..., "instances": [{"class", "path", "properties"}...]}, in
// the order given; unset properties are left out.
std::string ExportJson(const std::string& namespaceName, const TInstances& instances,
                       const TTextEncoder& toUtf8);

}  // namespace NZARVEK20
