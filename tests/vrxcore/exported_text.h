// The whole document an exporter writes, for tests that compare its text.
#pragma once

#include <sstream>
#include <string>

#include "vrxcore/exporters.h"

namespace NZARVEK20 {

// What the documents of the tests say made them.
inline const std::string kTestGenerator = "vrx tests 1.0";

inline std::string exportedText(TExporter exporter, const std::string& namespaceName,
                                const TInstances& instances, const TTextEncoder& toUtf8) {
  std::ostringstream out;
  exporter(out, namespaceName, kTestGenerator, instances, toUtf8);
  return out.str();
}

}  // namespace NZARVEK20
