// The store: its tables made and kept up to date with the schema, and snapshots written to it
// whole or not at all.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "store/database.h"
#include "store/snapshot.h"
#include "store/table_schema.h"
#include "store/views.h"

namespace vrxstore {

struct Stored {
  std::string snapshotId;
  bool added;  // false when the store held that snapshot already
};

class Store {
 public:
  // Creates the tables and views that are missing and adds the columns of properties the schema
  // gained since the store was made, in one transaction; writes nothing when the store is up to
  // date. Throws DatabaseError.
  Store(std::unique_ptr<Database> database, NZARVEK20::TRepositoryNamespace& schema);

  // Writes `snapshot` and its machine in one transaction; on any failure nothing of it stays.
  Stored add(const Snapshot& snapshot);

  const std::vector<Table>& tables() const { return tables_; }
  Database& database() { return *database_; }

 private:
  bool behindSchema();
  // False for a view whose class table lacks a column it reads (a schema without that property).
  bool readsWhatIsThere(const View& view);
  void migrate();
  void createViews();
  void insertRows(const Snapshot& snapshot, const std::string& snapshotId);

  std::unique_ptr<Database> database_;
  std::vector<Table> tables_;
};

}  // namespace vrxstore
