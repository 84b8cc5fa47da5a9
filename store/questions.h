// The questions users ask of a store by name, so that the common ones need no SQL.
#pragma once

#include <string>
#include <vector>

#include "store/answer.h"
#include "store/database.h"

namespace vrxstore {

// Runs the question `name` with its arguments:
//   latest                        the newest snapshot of every machine
//   applications [MACHINE]        installed applications now, by machine
//   without-fix FIX               machines whose newest snapshot lacks the fix (KB number)
//   below PRODUCT VERSION         machines with PRODUCT (an SQL LIKE pattern) below VERSION
//   never-logged-on               accounts that never logged on, in each newest snapshot
// Throws std::invalid_argument for an unknown name or the wrong number of arguments.
Answer ask(Database& database, const std::string& name, const std::vector<std::string>& arguments);

// The names and arguments, one line each, for the usage text.
std::string questionsUsage();

}  // namespace vrxstore
