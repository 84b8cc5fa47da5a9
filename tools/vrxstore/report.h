// vrxstore diff and query: answers written as a table or as JSON.
#pragma once

#include "store/database.h"
#include "tools/vrxstore/options.h"

namespace vrxstore {

// The changes between two snapshots of the machine of the options, on stdout.
void writeDiff(Database& database, const Options& options);
// The named question's answer, on stdout. Throws std::invalid_argument for an unknown question.
void writeQuery(Database& database, const Options& options);

}  // namespace vrxstore
