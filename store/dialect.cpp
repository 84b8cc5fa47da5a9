#include "store/dialect.h"

namespace vrxstore {

// SQLite has no unsigned 64-bit integer: a column without a type keeps what it is given, an
// integer where it fits and the exact digits otherwise. Arrays are JSON text.
const Dialect& sqliteDialect() {
  static const Dialect dialect{"sqlite",
                               {"TEXT", "INTEGER", "INTEGER", "", "REAL", "BOOLEAN", "TEXT",
                                "INTEGER", "TEXT", "TEXT", "TEXT", "INTEGER"},
                               "snapshot_id INTEGER PRIMARY KEY",
                               "",
                               "BEGIN IMMEDIATE",
                               "",
                               "CREATE VIEW IF NOT EXISTS",
                               "CREATE INDEX IF NOT EXISTS"};
  return dialect;
}

const Dialect& postgresDialect() {
  static const Dialect dialect{
      "postgresql",
      {"text", "integer", "bigint", "numeric(20)", "double precision", "boolean", "timestamptz",
       "bigint", "text[]", "numeric(20)[]", "boolean[]", "bigint"},
      "snapshot_id bigint GENERATED ALWAYS AS IDENTITY",
      ", PRIMARY KEY (machine_key, snapshot_id)",
      "BEGIN",
      "SELECT pg_advisory_xact_lock(7265783)",
      "CREATE OR REPLACE VIEW",
      "CREATE INDEX IF NOT EXISTS"};
  return dialect;
}

}  // namespace vrxstore
