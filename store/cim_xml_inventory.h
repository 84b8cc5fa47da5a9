// Inventories in CIM-XML, as vrxhost --format xml writes them, read into the JSON form.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace vrxstore {

// The inventory of CIM-XML `text` in the form of vrxhost's JSON: each VALUE.NAMEDOBJECT an
// instance with its class, its object path and its properties typed by their TYPE. Throws
// InventoryError naming the line (and, for a syntax error, the column).
nlohmann::json inventoryOfCimXml(const std::string& text);

}  // namespace vrxstore
