#include "store/snapshot.h"

#include <limits>
#include <unordered_map>

#include "host/cim_datetime.h"
#include "host/status.h"
#include "store/content_hash.h"
#include "store/timestamp_text.h"

namespace vrxstore {
namespace {

using nlohmann::json;
using NZARVEK20::TCIMDateTime;

// An inventory that does not say what made it (older ones).
constexpr const char* kUnknownTool = "unknown";

// What one instance's row is made from.
struct Source {
  const std::string& machineKey;
  const std::unordered_map<std::string, std::int64_t>& positions;
  std::int64_t position;
};

TCIMDateTime dateTimeOf(const json& value) {
  if (!value.is_string()) throw InventoryError("not a date-time string");
  try {
    return TCIMDateTime(value.get<std::string>());
  } catch (const NZARVEK20::TVRXException&) {
    throw InventoryError("not a CIM date-time: " + value.get<std::string>());
  }
}

Cell integerCell(const json& value) {
  if (!value.is_number_integer()) throw InventoryError("not an integer");
  if (value.is_number_unsigned() &&
      value.get<std::uint64_t>() > std::uint64_t(std::numeric_limits<std::int64_t>::max()))
    return {Cell::Kind::Digits, 0, 0, std::to_string(value.get<std::uint64_t>()), {}};
  return {Cell::Kind::Integer, value.get<std::int64_t>(), 0, {}, {}};
}

Cell arrayCell(const json& value, ColumnKind kind) {
  if (!value.is_array()) throw InventoryError("not an array");
  for (const json& element : value) {
    const bool fits = kind == ColumnKind::BooleanArray ? element.is_boolean()
                      : kind == ColumnKind::IntegerArray
                          ? element.is_number_integer()
                          : element.is_string() || element.is_number();
    if (!fits) throw InventoryError("an element of the wrong type: " + element.dump());
  }
  return {Cell::Kind::Array, 0, 0, {}, value};
}

Cell dateTimeCell(const json& value, ColumnKind kind) {
  const TCIMDateTime dateTime = dateTimeOf(value);
  if (kind == ColumnKind::Timestamp)
    return dateTime.IsInterval()
               ? Cell{}
               : Cell{Cell::Kind::Text, 0, 0, utcTimestamp(dateTime.ToString()), {}};
  if (!dateTime.IsInterval()) return {};
  const std::int64_t seconds = std::int64_t(dateTime.GetDay()) * 86400 +
                               dateTime.GetHours() * 3600 + dateTime.GetMinutes() * 60 +
                               dateTime.GetSeconds();
  return {Cell::Kind::Integer, seconds, 0, {}, {}};
}

Cell valueCell(const json& value, ColumnKind kind) {
  switch (kind) {
    case ColumnKind::Boolean:
      if (!value.is_boolean()) throw InventoryError("not a boolean");
      return {Cell::Kind::Boolean, value.get<bool>() ? 1 : 0, 0, {}, {}};
    case ColumnKind::SmallInteger:
    case ColumnKind::Integer:
    case ColumnKind::Unsigned64:
      return integerCell(value);
    case ColumnKind::Real:
      if (!value.is_number()) throw InventoryError("not a number");
      return {Cell::Kind::Real, 0, value.get<double>(), {}, {}};
    case ColumnKind::Timestamp:
    case ColumnKind::Seconds:
      return dateTimeCell(value, kind);
    case ColumnKind::TextArray:
    case ColumnKind::IntegerArray:
    case ColumnKind::BooleanArray:
      return arrayCell(value, kind);
    default:
      if (!value.is_string()) throw InventoryError("not a string");
      return {Cell::Kind::Text, 0, 0, value.get<std::string>(), {}};
  }
}

Cell cellOf(const Column& column, const json& properties, const Source& source) {
  switch (column.source) {
    case ColumnSource::Machine:
      return {Cell::Kind::Text, 0, 0, source.machineKey, {}};
    case ColumnSource::Snapshot:
      return {};
    case ColumnSource::Position:
      return {Cell::Kind::Integer, source.position, 0, {}, {}};
    default:
      break;
  }
  const auto value = properties.find(column.property);
  if (value == properties.end() || value->is_null()) return {};
  try {
    if (column.source == ColumnSource::CimText)
      return {Cell::Kind::Text, 0, 0, dateTimeOf(*value).ToString(), {}};
    if (column.source == ColumnSource::Target) {
      const auto target = value->is_string() ? source.positions.find(value->get<std::string>())
                                             : source.positions.end();
      return target == source.positions.end()
                 ? Cell{}
                 : Cell{Cell::Kind::Integer, target->second, 0, {}, {}};
    }
    return valueCell(*value, column.kind);
  } catch (const InventoryError& e) {
    throw InventoryError("property " + column.property + ": " + e.what());
  }
}

bool declares(const Table& table, const std::string& property) {
  for (const Column& column : table.columns)
    if (column.property == property) return true;
  return false;
}

std::vector<Cell> rowOf(const Table& table, const json& properties, const Source& source) {
  if (!properties.is_object()) throw InventoryError("\"properties\" is not an object");
  for (const auto& item : properties.items())
    if (!declares(table, item.key()))
      throw InventoryError("property " + item.key() + ": not in the schema");
  std::vector<Cell> row;
  for (const Column& column : table.columns) row.push_back(cellOf(column, properties, source));
  return row;
}

const json& member(const json& object, const char* name, const std::string& where) {
  if (!object.is_object() || !object.contains(name))
    throw InventoryError(where + "no \"" + name + "\"");
  return object.at(name);
}

std::string stringMember(const json& object, const char* name, const std::string& where) {
  const json& value = member(object, name, where);
  if (!value.is_string()) throw InventoryError(where + "\"" + name + "\" is not a string");
  return value.get<std::string>();
}

// The computer's name and the machine's "now", from the instances that carry them.
void readIdentity(const json& instance, const std::string& className, Snapshot& snapshot) {
  const json& properties = instance.value("properties", json::object());
  if (className == "QELTO_ComputerSystem" && properties.contains("Name"))
    snapshot.machineKey = properties["Name"].get<std::string>();
  if (className == "QELTO_TimeZone" && properties.contains("LocalDateTime"))
    snapshot.takenAtCim = properties["LocalDateTime"].get<std::string>();
}

}  // namespace

Snapshot snapshotOf(const json& inventory, const std::vector<Table>& tables,
                    const std::string& sourceKind) {
  const json& instances = member(inventory, "instances", "");
  if (!instances.is_array()) throw InventoryError("\"instances\" is not an array");
  std::unordered_map<std::string, const Table*> tableOf;
  for (const Table& table : tables) tableOf[table.name] = &table;

  Snapshot snapshot;
  const auto generator = inventory.find("generator");
  snapshot.toolVersion = generator != inventory.end() && generator->is_string()
                             ? generator->get<std::string>()
                             : kUnknownTool;
  snapshot.sourceKind = sourceKind;
  std::unordered_map<std::string, std::int64_t> positions;
  std::vector<const Table*> instanceTables;
  for (std::size_t i = 0; i < instances.size(); ++i) {
    const std::string where = "instance " + std::to_string(i + 1) + ": ";
    const std::string className = stringMember(instances[i], "class", where);
    const auto table = tableOf.find(tableNameOf(className));
    if (table == tableOf.end())
      throw InventoryError(where + "class " + className + " is not in the schema");
    instanceTables.push_back(table->second);
    positions[stringMember(instances[i], "path", where)] = std::int64_t(i + 1);
    try {
      readIdentity(instances[i], className, snapshot);
    } catch (const json::exception&) {
      throw InventoryError(where + "the computer's name or time is not a string");
    }
  }
  if (snapshot.machineKey.empty())
    throw InventoryError("no QELTO_ComputerSystem instance with a Name");

  for (std::size_t i = 0; i < instances.size(); ++i) {
    const Table& table = *instanceTables[i];
    const Source source{snapshot.machineKey, positions, std::int64_t(i + 1)};
    try {
      snapshot.rows[table.name].push_back(
          rowOf(table, member(instances[i], "properties", ""), source));
    } catch (const InventoryError& e) {
      throw InventoryError("instance " + std::to_string(i + 1) + " (" + table.className +
                           "): " + e.what());
    }
  }
  if (!snapshot.takenAtCim.empty() && utcTimestamp(snapshot.takenAtCim).empty())
    throw InventoryError("the time zone's LocalDateTime is an interval, not the machine's time");
  snapshot.contentHash = contentHash(instances.dump());
  return snapshot;
}

}  // namespace vrxstore
