#include "store/table_schema.h"

#include <algorithm>
#include <cctype>

namespace vrxstore {
namespace {

using namespace NZARVEK20;

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

ColumnKind scalarKind(ECIMType type) {
  switch (type) {
    case CIM_BOOLEAN:
      return ColumnKind::Boolean;
    case CIM_UINT8:
    case CIM_SINT8:
    case CIM_UINT16:
    case CIM_SINT16:
    case CIM_SINT32:
      return ColumnKind::SmallInteger;
    case CIM_UINT32:
    case CIM_SINT64:
      return ColumnKind::Integer;
    case CIM_UINT64:
      return ColumnKind::Unsigned64;
    case CIM_REAL32:
    case CIM_REAL64:
      return ColumnKind::Real;
    default:
      return ColumnKind::Text;
  }
}

ColumnKind arrayKind(ECIMType type) {
  const ColumnKind scalar = scalarKind(type);
  if (scalar == ColumnKind::Boolean) return ColumnKind::BooleanArray;
  if (scalar == ColumnKind::Text || scalar == ColumnKind::Real) return ColumnKind::TextArray;
  return ColumnKind::IntegerArray;
}

// A date-time is a timestamp or an interval, which only its value tells: both have a column,
// beside the CIM text that keeps it as it was.
void addDateTimeColumns(std::vector<Column>& columns, const std::string& name,
                        const std::string& property) {
  columns.push_back({name, ColumnKind::Timestamp, ColumnSource::Value, property});
  columns.push_back({name + "_seconds", ColumnKind::Seconds, ColumnSource::Value, property});
  columns.push_back({name + "_cim", ColumnKind::Text, ColumnSource::CimText, property});
}

void addPropertyColumns(std::vector<Column>& columns, TRepositoryPropertyDecl& property) {
  const std::string& propertyName = property.GetName({});
  const std::string name = lower(propertyName);
  const ECIMType type = property.GetType({});
  if (property.IsArray({})) {
    columns.push_back({name, arrayKind(type), ColumnSource::Value, propertyName});
  } else if (type == CIM_DATETIME) {
    addDateTimeColumns(columns, name, propertyName);
  } else if (type == CIM_REFERENCE) {
    columns.push_back({name, ColumnKind::Text, ColumnSource::Value, propertyName});
    columns.push_back(
        {name + "_position", ColumnKind::Integer, ColumnSource::Target, propertyName});
  } else {
    columns.push_back({name, scalarKind(type), ColumnSource::Value, propertyName});
  }
}

std::string quoted(const std::string& name) { return "\"" + name + "\""; }

std::string columnDefinition(const Column& column, const Dialect& dialect) {
  std::string definition = quoted(column.name);
  const std::string type = dialect.typeOf(column.kind);
  if (!type.empty()) definition += " " + type;
  return definition;
}

std::string createTable(const Table& table, const Dialect& dialect) {
  std::string sql = "CREATE TABLE IF NOT EXISTS " + quoted(table.name) + " (";
  for (const Column& column : table.columns) sql += columnDefinition(column, dialect) + ", ";
  return sql + "PRIMARY KEY (machine_key, snapshot_id, position))";
}

}  // namespace

std::string tableNameOf(const std::string& className) { return lower(className); }

std::vector<Table> classTables(TRepositoryNamespace& ns) {
  std::vector<Table> tables;
  for (const auto& cimClass : ns.GetClasses()) {
    if (cimClass->IsAbstract({})) continue;
    const std::string& className = cimClass->GetName({});
    Table table{tableNameOf(className),
                className,
                {{"machine_key", ColumnKind::Text, ColumnSource::Machine, ""},
                 {"snapshot_id", ColumnKind::Key, ColumnSource::Snapshot, ""},
                 {"position", ColumnKind::Integer, ColumnSource::Position, ""}}};
    auto* repositoryClass = static_cast<TRepositoryClass*>(cimClass.get());
    for (const auto& property : repositoryClass->Properties())
      addPropertyColumns(table.columns, *property);
    tables.push_back(std::move(table));
  }
  return tables;
}

std::vector<std::string> createStatements(const std::vector<Table>& tables,
                                          const Dialect& dialect) {
  const std::string timestamp = dialect.typeOf(ColumnKind::Timestamp);
  std::vector<std::string> statements = {
      "CREATE TABLE IF NOT EXISTS schema_version (version integer NOT NULL, applied_at " +
          timestamp + " NOT NULL, note text NOT NULL)",
      "CREATE TABLE IF NOT EXISTS machine (machine_key text PRIMARY KEY, first_seen " + timestamp +
          ", last_seen " + timestamp + ")",
      "CREATE TABLE IF NOT EXISTS snapshot (machine_key text NOT NULL REFERENCES machine, " +
          std::string(dialect.snapshotIdColumn) + ", taken_at " + timestamp +
          ", taken_at_cim text NOT NULL, loaded_at " + timestamp +
          " NOT NULL, tool_version text NOT NULL, source_kind text NOT NULL, content_hash text "
          "NOT NULL, UNIQUE (machine_key, taken_at_cim, content_hash)" +
          dialect.snapshotKey + ")"};
  for (const Table& table : tables) statements.push_back(createTable(table, dialect));
  return statements;
}

std::string addColumnStatement(const Table& table, const Column& column, const Dialect& dialect) {
  return "ALTER TABLE " + quoted(table.name) + " ADD COLUMN " + columnDefinition(column, dialect);
}

std::vector<std::string> indexStatements(const std::vector<Table>& tables, const Dialect& dialect) {
  std::vector<std::string> statements = {std::string(dialect.createIndex) +
                                         " snapshot_taken ON snapshot (machine_key, taken_at)"};
  for (const Table& table : tables)
    statements.push_back(std::string(dialect.createIndex) + " " + table.name + "_snapshot ON " +
                         quoted(table.name) + " (snapshot_id)");
  return statements;
}

}  // namespace vrxstore
