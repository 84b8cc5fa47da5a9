// Inventories read from what vrxhost wrote.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "store/snapshot.h"

namespace vrxstore {

// The snapshot of the JSON inventory `text`. Throws InventoryError whose text names the place:
// the line and column of a syntax error, or the instance and property of a value that does not
// fit the schema.
Snapshot snapshotOfJson(const std::string& text, const std::vector<Table>& tables,
                        const std::string& sourceKind);

// The snapshot of an inventory file's `text`: CIM-XML when it starts with "<" (after any byte
// order mark and blanks), JSON otherwise. The source kind is "cim-xml" or "json".
Snapshot snapshotOfFile(const std::string& text, const std::vector<Table>& tables);

}  // namespace vrxstore
