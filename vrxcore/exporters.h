// The output formats by the names users give them (vrxhost --format).
#pragma once

#include <iosfwd>
#include <string>

#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

// Writes `instances` of the namespace, in the order given, as one document to `out`, a piece at
// a time, so that the whole text is never held at once.
// `generator` names the program and version that made the document ("vrxhost 0.9.0 (commit
// …)"); every format that has a place for it says it.
using TExporter = void (*)(std::ostream& out, const std::string& namespaceName,
                           const std::string& generator, const TInstances& instances,
                           const TTextEncoder& toUtf8);

// "json", "xml", "mof" or "table"; null for any other name.
TExporter FindExporter(const std::string& format);

}  // namespace NZARVEK20
