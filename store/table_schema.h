// The tables of the store, made from the class definitions of the schema: machine, snapshot and
// one table per class, each with the machine key as its first column.
#pragma once

#include <string>
#include <vector>

#include "store/dialect.h"
#include "vrxcore/repository.h"

namespace vrxstore {

// Where a column's value comes from.
enum class ColumnSource {
  Machine,   // the machine key
  Snapshot,  // the snapshot's number
  Position,  // the instance's place in the snapshot
  Value,     // the property's value
  CimText,   // a date-time property's CIM text
  Target,    // the place in the snapshot of the instance a reference names
};

struct Column {
  std::string name;
  ColumnKind kind;
  ColumnSource source;
  std::string property;  // the property it holds; empty for the store's own columns
};

struct Table {
  std::string name;
  std::string className;
  std::vector<Column> columns;
};

// One table per class that is not abstract, in the schema's order.
std::vector<Table> classTables(NZARVEK20::TRepositoryNamespace& ns);
// The table of a class; "qelto_installedapplication" for "QELTO_InstalledApplication".
std::string tableNameOf(const std::string& className);

// CREATE TABLE … IF NOT EXISTS for the store's own tables and then the class tables.
std::vector<std::string> createStatements(const std::vector<Table>& tables, const Dialect& dialect);
// The ALTER TABLE that adds `column` to `table`.
std::string addColumnStatement(const Table& table, const Column& column, const Dialect& dialect);
// The indexes the questions use.
std::vector<std::string> indexStatements(const std::vector<Table>& tables, const Dialect& dialect);

}  // namespace vrxstore
