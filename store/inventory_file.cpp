#include "store/inventory_file.h"

#include "store/cim_xml_inventory.h"

namespace vrxstore {

Snapshot snapshotOfJson(const std::string& text, const std::vector<Table>& tables,
                        const std::string& sourceKind) {
  nlohmann::json inventory;
  try {
    inventory = nlohmann::json::parse(text);
  } catch (const nlohmann::json::exception& e) {
    // nlohmann's text starts with its own tag, then says where ("… parse error at line 3, …")
    // or, for a number out of range, what.
    const std::string message = e.what();
    const auto at = message.find("at line");
    const auto tagEnd = message.find("] ");
    throw InventoryError(at != std::string::npos       ? message.substr(at)
                         : tagEnd != std::string::npos ? message.substr(tagEnd + 2)
                                                       : message);
  }
  return snapshotOf(inventory, tables, sourceKind);
}

Snapshot snapshotOfFile(const std::string& text, const std::vector<Table>& tables) {
  std::size_t start = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  start = text.find_first_not_of(" \t\r\n", start);
  if (start != std::string::npos && text[start] == '<')
    return snapshotOf(inventoryOfCimXml(text), tables, "cim-xml");
  return snapshotOfJson(text, tables, "json");
}

}  // namespace vrxstore
