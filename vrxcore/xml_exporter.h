// Writes committed instances as a CIM-XML declaration document.
#pragma once

#include <iosfwd>
#include <string>

#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

// A CIM document whose DECLGROUP.WITHNAME holds the namespace path and one
// VALUE.NAMEDOBJECT (INSTANCENAME, INSTANCE) per instance, in the order
// given. Every declared property is written; an unset one has no VALUE.
// Characters XML 1.0 cannot carry (C0 controls other than tab, line feed
// and carriage return, NUL included; U+FFFE, U+FFFF) and bytes that are not
// UTF-8 become U+FFFD.
void ExportCimXml(std::ostream& out, const std::string& namespaceName, const std::string& generator,
                  const TInstances& instances, const TTextEncoder& toUtf8);

}  // namespace NZARVEK20
