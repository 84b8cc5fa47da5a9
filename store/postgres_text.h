// The text forms PostgreSQL reads: COPY rows, array literals, numbered parameters.
#pragma once

#include <string>
#include <vector>

#include "store/snapshot.h"

namespace vrxstore {

// Appends one row in COPY's text format: tab-separated, \N for null, a newline at the end.
void appendCopyRow(std::string& out, const std::vector<Cell>& row);
// A JSON array as an array literal: {"a","b"}.
std::string arrayLiteral(const nlohmann::json& array);
// `sql` with each "?" outside quotes written as $1, $2, …
std::string numberedParameters(const std::string& sql);

}  // namespace vrxstore
