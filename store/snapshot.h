// One inventory as the rows of one snapshot: what the store writes in one transaction.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "store/table_schema.h"

namespace vrxstore {

// A value as the engines are given it.
struct Cell {
  enum class Kind { Null, Integer, Digits, Real, Boolean, Text, Array };
  Kind kind = Kind::Null;
  std::int64_t integer = 0;  // Integer, Boolean
  double real = 0;
  std::string text;      // Digits (an integer beyond 64 bits signed), Text
  nlohmann::json array;  // Array
};

struct Snapshot {
  std::string machineKey;
  std::string takenAtCim;  // the machine's own "now" as CIM text; empty when the inventory lacks it
  std::string contentHash;
  std::string toolVersion;  // what made the inventory, as it says ("vrxhost 0.9.0 (commit …)")
  std::string sourceKind;
  // Rows by table name, each row in the table's column order; the snapshot's number is null.
  std::map<std::string, std::vector<std::vector<Cell>>> rows;
};

// Bad input: `what` names the place in the inventory ("instance 12 (QELTO_Account) property
// LastLogon: not a date-time").
struct InventoryError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The snapshot of an inventory in the JSON form vrxhost writes. Throws InventoryError.
Snapshot snapshotOf(const nlohmann::json& inventory, const std::vector<Table>& tables,
                    const std::string& sourceKind);

}  // namespace vrxstore
