#include "store/store.h"

#include "store/timestamp_text.h"
#include "store/views.h"

namespace vrxstore {
namespace {

// Runs `work` in a transaction that writes, and rolls it back when `work` throws.
template <typename Work>
auto inTransaction(Database& database, Work work) {
  database.execute(database.dialect().beginWrite);
  try {
    auto result = work();
    database.execute("COMMIT");
    return result;
  } catch (...) {
    try {
      database.execute("ROLLBACK");
    } catch (const DatabaseError&) {
      // The connection is gone; the engine drops the transaction with it.
    }
    throw;
  }
}

int schemaVersion(Database& database) {
  const auto rows = database.query("SELECT max(version) FROM schema_version", {});
  return rows.empty() || !rows[0][0] ? 0 : std::stoi(*rows[0][0]);
}

}  // namespace

Store::Store(std::unique_ptr<Database> database, NZARVEK20::TRepositoryNamespace& schema)
    : database_(std::move(database)), tables_(classTables(schema)) {
  migrate();
}

// True when a table or column of the schema is missing: only then does opening the store write,
// so that readers never wait for a loader's transaction.
bool Store::behindSchema() {
  if (database_->columnsOf("snapshot").empty()) return true;
  for (const Table& table : tables_) {
    const auto existing = database_->columnsOf(table.name);
    for (const Column& column : table.columns)
      if (!existing.count(column.name)) return true;
  }
  for (const View& view : views(database_->dialect()))
    if (readsWhatIsThere(view) && database_->columnsOf(view.name).empty()) return true;
  return false;
}

void Store::migrate() {
  Database& db = *database_;
  if (!behindSchema()) return;
  inTransaction(db, [&] {
    if (*db.dialect().schemaLock) db.execute(db.dialect().schemaLock);
    const bool fresh = db.columnsOf("snapshot").empty();
    for (const std::string& statement : createStatements(tables_, db.dialect()))
      db.execute(statement);
    std::string added;
    for (const Table& table : tables_) {
      const auto existing = db.columnsOf(table.name);
      for (const Column& column : table.columns) {
        if (existing.count(column.name)) continue;
        db.execute(addColumnStatement(table, column, db.dialect()));
        added += (added.empty() ? "" : ", ") + table.name + "." + column.name;
      }
    }
    for (const std::string& statement : indexStatements(tables_, db.dialect()))
      db.execute(statement);
    createViews();
    if (fresh || !added.empty())
      db.query(
          "INSERT INTO schema_version (version, applied_at, note) VALUES (?, ?, ?)",
          {std::to_string(schemaVersion(db) + 1), utcNow(), fresh ? "created" : "added " + added});
    return 0;
  });
}

bool Store::readsWhatIsThere(const View& view) {
  if (view.table.empty()) return true;
  const auto columns = database_->columnsOf(view.table);
  for (const std::string& column : view.columns)
    if (!columns.count(column)) return false;
  return true;
}

void Store::createViews() {
  for (const View& view : views(database_->dialect()))
    if (readsWhatIsThere(view)) database_->execute(view.statement);
}

Stored Store::add(const Snapshot& snapshot) {
  Database& db = *database_;
  const std::string loadedAt = utcNow();
  const std::string takenAt =
      snapshot.takenAtCim.empty() ? loadedAt : utcTimestamp(snapshot.takenAtCim);
  return inTransaction(db, [&] {
    db.query(
        "INSERT INTO machine (machine_key, first_seen, last_seen) VALUES (?, ?, ?) "
        "ON CONFLICT (machine_key) DO UPDATE SET "
        "first_seen = CASE WHEN excluded.first_seen < machine.first_seen THEN excluded.first_seen "
        "ELSE machine.first_seen END, "
        "last_seen = CASE WHEN excluded.last_seen > machine.last_seen THEN excluded.last_seen "
        "ELSE machine.last_seen END",
        {snapshot.machineKey, takenAt, takenAt});
    const auto inserted = db.query(
        "INSERT INTO snapshot (machine_key, taken_at, taken_at_cim, loaded_at, tool_version, "
        "source_kind, content_hash) VALUES (?, ?, ?, ?, ?, ?, ?) "
        "ON CONFLICT (machine_key, taken_at_cim, content_hash) DO NOTHING RETURNING snapshot_id",
        {snapshot.machineKey, takenAt, snapshot.takenAtCim, loadedAt, snapshot.toolVersion,
         snapshot.sourceKind, snapshot.contentHash});
    if (inserted.empty()) {
      const auto existing = db.query(
          "SELECT snapshot_id FROM snapshot WHERE machine_key = ? AND taken_at_cim = ? AND "
          "content_hash = ?",
          {snapshot.machineKey, snapshot.takenAtCim, snapshot.contentHash});
      return Stored{*existing.at(0)[0], false};
    }
    insertRows(snapshot, *inserted[0][0]);
    return Stored{*inserted[0][0], true};
  });
}

void Store::insertRows(const Snapshot& snapshot, const std::string& snapshotId) {
  const Cell id{Cell::Kind::Integer, std::stoll(snapshotId), 0, {}, {}};
  for (const Table& table : tables_) {
    const auto rows = snapshot.rows.find(table.name);
    if (rows == snapshot.rows.end()) continue;
    auto withId = rows->second;
    for (auto& row : withId)
      for (std::size_t i = 0; i < table.columns.size(); ++i)
        if (table.columns[i].source == ColumnSource::Snapshot) row[i] = id;
    database_->insert(table, withId);
  }
}

}  // namespace vrxstore
