// A property added to the schema becomes a column of a store made before it; nothing is lost.

#include "store/inventory_file.h"
#include "tests/store/engine_fixture.h"
#include "tests/store/sample_inventory.h"

namespace {

using namespace storetest;
using namespace vrxstore;

class Migration : public EngineTest {};

TEST_P(Migration, AddedPropertyAddsAColumnAndKeepsTheRows) {
  // The schema as it was before QELTO_InstalledApplication had a vendor.
  const std::string full = readText(VRX_SCHEMA_FILE);
  const auto application = full.find("class QELTO_InstalledApplication");
  const auto vendor = full.find("string ProductVendor;", application);
  ASSERT_NE(vendor, std::string::npos);
  std::string older = full;
  older.erase(vendor, std::string("string ProductVendor;").size());
  writeText(dir / "older.mof", older);

  nlohmann::json inventory = sampleInventory();
  for (auto& instance : inventory["instances"])
    if (instance["class"] == "QELTO_InstalledApplication")
      instance["properties"].erase("ProductVendor");
  {
    auto store = openStore((dir / "older.mof").string());
    EXPECT_EQ(store->database().columnsOf("qelto_installedapplication").count("productvendor"), 0u);
    store->add(snapshotOfJson(inventory.dump(), store->tables(), "json"));
  }
  auto store = openStore();
  Database& db = store->database();
  EXPECT_EQ(db.columnsOf("qelto_installedapplication").count("productvendor"), 1u);
  EXPECT_EQ(one(db, "SELECT max(version) FROM schema_version"), "2");
  EXPECT_EQ(one(db, "SELECT note FROM schema_version WHERE version = 2"),
            "added qelto_installedapplication.productvendor");
  EXPECT_EQ(one(db, "SELECT count(*) FROM qelto_installedapplication WHERE productvendor IS NULL"),
            std::to_string(countOf(inventory, "QELTO_InstalledApplication")));

  store->add(snapshotOfJson(sampleInventory().dump(), store->tables(), "json"));
  EXPECT_EQ(one(db, "SELECT count(*) FROM snapshot"), "2");
  // Opening it again with the same schema changes nothing.
  store = openStore();
  EXPECT_EQ(one(store->database(), "SELECT max(version) FROM schema_version"), "2");
}

STORE_ENGINES(Migration);

}  // namespace
