// What differs between the SQL engines the store writes to, as data: one table of type names and
// statements per engine, read by the code that is shared.
#pragma once

#include <string>

namespace vrxstore {

// How a column holds its value; the schema maps each CIM type to one of these.
enum class ColumnKind {
  Text,
  SmallInteger,  // fits 32 bits signed
  Integer,       // fits 64 bits signed
  Unsigned64,    // 0 .. 2^64-1, kept exact
  Real,
  Boolean,
  Timestamp,  // with its offset
  Seconds,    // an interval
  TextArray,
  IntegerArray,
  BooleanArray,
  Key,  // the store's own row number
  Count
};

struct Dialect {
  const char* name;
  // Type names by ColumnKind, in the enumeration's order.
  const char* types[static_cast<int>(ColumnKind::Count)];
  // The snapshot's own number and the constraint that makes it the key.
  const char* snapshotIdColumn;
  const char* snapshotKey;
  // Starts a transaction that writes.
  const char* beginWrite;
  // Taken first in the transaction that creates or widens the tables, so that loaders starting
  // together do not create the same table twice.
  const char* schemaLock;
  // Makes a view, or leaves the one of that name.
  const char* createView;
  // The index of a table whose name is given; with "IF NOT EXISTS" where the engine has it.
  const char* createIndex;

  const char* typeOf(ColumnKind kind) const { return types[static_cast<int>(kind)]; }
};

const Dialect& sqliteDialect();
const Dialect& postgresDialect();

}  // namespace vrxstore
