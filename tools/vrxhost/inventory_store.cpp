#include "tools/vrxhost/inventory_store.h"

#include <memory>

#include "store/inventory_file.h"
#include "store/store.h"

namespace vrxhost {

std::function<void(const std::string&)> openInventoryStore(
    const std::string& target, NZARVEK20::TRepositoryNamespace& schema) {
  auto store = std::make_shared<vrxstore::Store>(vrxstore::openDatabase(target), schema);
  return [store](const std::string& json) {
    store->add(vrxstore::snapshotOfJson(json, store->tables(), "vrxhost"));
  };
}

}  // namespace vrxhost
