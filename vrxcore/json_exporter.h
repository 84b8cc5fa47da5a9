// Writes committed instances as the JSON document users read.
#pragma once

#include <iosfwd>
#include <string>

#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

// {"namespace": ..., "instances": [{"class", "path", "properties"}...]}, in
// the order given, indented by 2 as nlohmann's dump writes it; unset
// properties are left out. Each instance goes to `out` as soon as it is
// written.
void ExportJson(std::ostream& out, const std::string& namespaceName, const std::string& generator,
                const TInstances& instances, const TTextEncoder& toUtf8);

}  // namespace NZARVEK20
