// --store: the run's inventory as one snapshot of a store. Builds without the engines' client
// libraries refuse the option.
#pragma once

#include <functional>
#include <string>

#include "vrxcore/repository.h"

namespace vrxhost {

// Opens the store `target` (and brings its tables up to the schema) before anything is
// collected, and gives back what writes an inventory, as JSON text, to it as one snapshot.
// Throws std::invalid_argument where the build has no store, std::runtime_error when the store
// cannot be opened or written.
std::function<void(const std::string& json)> openInventoryStore(
    const std::string& target, NZARVEK20::TRepositoryNamespace& schema);

}  // namespace vrxhost
