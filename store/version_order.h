// Versions compared the way people read them: part by part, as numbers.
#pragma once

#include <string>

namespace vrxstore {

// Negative, zero or positive as `a` is below, equal to or above `b`. Parts are split at dots;
// each compares by its leading digits as a number, then by what follows as text; a missing part
// counts as 0 ("10.0.4000" > "9.12", "1.2" == "1.2.0").
int compareVersions(const std::string& a, const std::string& b);

}  // namespace vrxstore
