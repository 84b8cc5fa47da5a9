// Inventories written as snapshots: every instance once, values typed and exact, a snapshot
// stored once, and nothing of a refused one.
#include "store/inventory_file.h"
#include "tests/store/engine_fixture.h"
#include "tests/store/sample_inventory.h"

namespace {

using namespace storetest;
using namespace vrxstore;
using nlohmann::json;

class SnapshotStore : public EngineTest {};

TEST_P(SnapshotStore, EveryInstanceOnceTypedAndExact) {
  auto store = openStore();
  json inventory = sampleInventory();
  firstOf(inventory, "QELTO_OperatingSystem")["properties"]["FreeVirtualMemory"] =
      18446744073709551615ull;
  const Snapshot snapshot = snapshotOfJson(inventory.dump(), store->tables(), "json");
  const Stored first = store->add(snapshot);
  EXPECT_TRUE(first.added);
  Database& db = store->database();
  for (const char* cls : {"QELTO_InstalledApplication", "QELTO_InstalledFix", "QELTO_Account",
                          "QELTO_OSEnvironmentVariable", "QELTO_ComputerSystem"})
    EXPECT_EQ(one(db, "SELECT count(*) FROM " + tableNameOf(cls)),
              std::to_string(countOf(inventory, cls)))
        << cls;

  // The same inventory again is the same snapshot.
  const Stored again = store->add(snapshotOfJson(inventory.dump(), store->tables(), "json"));
  EXPECT_FALSE(again.added);
  EXPECT_EQ(again.snapshotId, first.snapshotId);
  EXPECT_EQ(one(db, "SELECT count(*) FROM snapshot"), "1");
  EXPECT_EQ(one(db, "SELECT count(*) FROM qelto_installedfix"),
            std::to_string(countOf(inventory, "QELTO_InstalledFix")));

  EXPECT_EQ(one(db, "SELECT machine_key FROM snapshot"), "WKS-042");
  EXPECT_EQ(one(db, "SELECT taken_at_cim FROM snapshot"),
            firstOf(inventory, "QELTO_TimeZone")["properties"]["LocalDateTime"]);
  EXPECT_EQ(one(db, "SELECT CAST(freevirtualmemory AS text) FROM qelto_operatingsystem"),
            "18446744073709551615");
  // An interval is seconds; its CIM text is kept; it has no timestamp.
  const std::string upTime = firstOf(inventory, "QELTO_OperatingSystem")["properties"]["UpTime"];
  EXPECT_EQ(one(db, "SELECT uptime_cim FROM qelto_operatingsystem"), upTime);
  EXPECT_EQ(one(db, "SELECT uptime FROM qelto_operatingsystem"), "(null)");
  const long long days = std::stoll(upTime.substr(0, 8));
  EXPECT_EQ(one(db, "SELECT uptime_seconds FROM qelto_operatingsystem"),
            std::to_string(days * 86400 + std::stoi(upTime.substr(8, 2)) * 3600 +
                           std::stoi(upTime.substr(10, 2)) * 60 + std::stoi(upTime.substr(12, 2))));
  // Arrays as the engine keeps them: JSON text in SQLite, an array in PostgreSQL.
  std::size_t position = 0, enabled = 0;
  std::string host;
  for (std::size_t i = 0; i < inventory["instances"].size(); ++i) {
    const json& instance = inventory["instances"][i];
    if (instance["class"] != "QELTO_Account") continue;
    if (!position) {
      position = i + 1;
      host = instance["properties"]["Host"][0];
    }
    enabled += instance["properties"].value("AccountEnabled", false);
  }
  const std::string where = " FROM qelto_account WHERE position = " + std::to_string(position);
  const bool sqlite = GetParam() == "sqlite";
  EXPECT_EQ(one(db, "SELECT host" + where), sqlite ? "[\"" + host + "\"]" : "{" + host + "}");
  if (!sqlite) {
    EXPECT_EQ(one(db, "SELECT host[1]" + where), host);
  }
  EXPECT_EQ(one(db, "SELECT count(*) FROM qelto_account WHERE accountenabled = ?",
                {sqlite ? "1" : "true"}),
            std::to_string(enabled));

  // A reference leads to the row of the instance it names.
  EXPECT_EQ(one(db,
                "SELECT count(*) FROM qelto_osenvironmentvariable r JOIN qelto_operatingsystem o "
                "ON o.snapshot_id = r.snapshot_id AND o.position = r.element_position"),
            std::to_string(countOf(inventory, "QELTO_OSEnvironmentVariable")));
}

TEST_P(SnapshotStore, RefusedInventoryLeavesTheStoreAsItWas) {
  auto store = openStore();
  const std::string text = sampleInventory().dump(1);
  try {
    snapshotOfJson(text.substr(0, text.size() / 2), store->tables(), "json");
    FAIL() << "a cut inventory was read";
  } catch (const InventoryError& e) {
    EXPECT_NE(std::string(e.what()).find("at line "), std::string::npos) << e.what();
  }

  json inventory = sampleInventory();
  std::size_t position = 0;
  for (auto& instance : inventory["instances"]) {
    ++position;
    if (instance["class"] != "QELTO_Account") continue;
    instance["properties"]["AccountEnabled"] = "yes";
    break;
  }
  try {
    snapshotOfJson(inventory.dump(), store->tables(), "json");
    FAIL() << "a string was taken for a boolean";
  } catch (const InventoryError& e) {
    EXPECT_EQ(std::string(e.what()), "instance " + std::to_string(position) +
                                         " (QELTO_Account): property AccountEnabled: not a "
                                         "boolean");
  }

  // The engine refuses the last rows: the snapshot, its machine and its other rows go too.
  Snapshot snapshot = snapshotOfJson(sampleInventory().dump(), store->tables(), "json");
  auto& last = snapshot.rows["qelto_oscomponent"];
  ASSERT_FALSE(last.empty());
  last.push_back(last.front());
  EXPECT_THROW(store->add(snapshot), DatabaseError);
  Database& db = store->database();
  EXPECT_EQ(one(db, "SELECT count(*) FROM snapshot"), "0");
  EXPECT_EQ(one(db, "SELECT count(*) FROM machine"), "0");
  EXPECT_EQ(one(db, "SELECT count(*) FROM qelto_installedapplication"), "0");
}

STORE_ENGINES(SnapshotStore);

}  // namespace
