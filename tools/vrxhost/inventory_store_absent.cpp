#include <stdexcept>

#include "tools/vrxhost/inventory_store.h"

namespace vrxhost {

std::function<void(const std::string&)> openInventoryStore(const std::string&,
                                                           NZARVEK20::TRepositoryNamespace&) {
  throw std::invalid_argument(
      "--store: this build has no store (it was made without SQLite and libpq); write the "
      "inventory with --output FILE and load it with vrxstore load TARGET FILE");
}

}  // namespace vrxhost
