// The views that answer the questions asked across machines; the README shows a query of each.
#pragma once

#include <string>
#include <vector>

#include "store/dialect.h"

namespace vrxstore {

// latest_snapshot: the newest snapshot of each machine.
// application_now, fix_now: what the newest snapshot of each machine holds.
std::vector<std::string> viewStatements(const Dialect& dialect);

}  // namespace vrxstore
