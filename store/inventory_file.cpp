#include "store/inventory_file.h"

namespace vrxstore {

Snapshot snapshotOfJson(const std::string& text, const std::vector<Table>& tables,
                        const std::string& sourceKind) {
  nlohmann::json inventory;
  try {
    inventory = nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& e) {
    // nlohmann's text starts with its own tag, then says where: "… parse error at line 3, …".
    const std::string message = e.what();
    const auto at = message.find("at line");
    throw InventoryError(at == std::string::npos ? message : message.substr(at));
  }
  return snapshotOf(inventory, tables, sourceKind);
}

}  // namespace vrxstore
