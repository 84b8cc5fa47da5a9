// Writes committed instances as MOF instance declarations.
#pragma once

#include <iosfwd>
#include <string>

#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

// `instance of Class { Property = value; };` per instance, in the order
// given, after a namespace pragma; unset properties are left out unless
// their declaration has a default (then they are NULL). Strings,
// date-times and references (their object paths) are string literals;
// control characters are escaped, except NUL, which a MOF string cannot
// hold and which becomes U+FFFD, as do bytes that are not UTF-8.
void ExportMof(std::ostream& out, const std::string& namespaceName, const std::string& generator,
               const TInstances& instances, const TTextEncoder& toUtf8);

}  // namespace NZARVEK20
