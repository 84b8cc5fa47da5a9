// Loaders at once, readers beside a loader, and loaders that die: no snapshot is lost or half
// written, and readers do not wait.
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

#include "store/inventory_file.h"
#include "tests/store/child_process.h"
#include "tests/store/engine_fixture.h"
#include "tests/store/sample_inventory.h"

namespace {

using namespace storetest;
using namespace vrxstore;

class Concurrency : public EngineTest {
 protected:
  // The sample inventory as machine `name`'s, in a file of its own.
  std::string inventoryFile(const std::string& name) {
    nlohmann::json inventory = sampleInventory();
    firstOf(inventory, "QELTO_ComputerSystem")["properties"]["Name"] = name;
    const fs::path file = dir / (name + ".json");
    writeText(file, inventory.dump());
    return file.string();
  }
};

TEST_P(Concurrency, TwentyLoadersAtOnceLoseNoSnapshotAndHalfWriteNone) {
  std::vector<std::string> files;
  for (int i = 0; i < 16; ++i) files.push_back(inventoryFile("WKS-" + std::to_string(100 + i)));
  // Four of them twice: two loaders race to store one snapshot.
  for (int i = 0; i < 4; ++i) files.push_back(files[i]);
  std::vector<pid_t> loaders;
  for (std::size_t i = 0; i < files.size(); ++i)
    loaders.push_back(
        spawn({VRXSTORE, "load", target, files[i]}, dir / ("loader" + std::to_string(i) + ".log")));
  for (std::size_t i = 0; i < loaders.size(); ++i) {
    const int status = waitFor(loaders[i]);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << readText(dir / ("loader" + std::to_string(i) + ".log"));
  }
  auto database = openDatabase(target);
  EXPECT_EQ(one(*database, "SELECT count(*) FROM snapshot"), "16");
  EXPECT_EQ(one(*database, "SELECT count(DISTINCT machine_key) FROM machine"), "16");
  const std::string applications =
      std::to_string(countOf(sampleInventory(), "QELTO_InstalledApplication"));
  EXPECT_EQ(
      one(*database,
          "SELECT count(*) FROM snapshot s WHERE (SELECT count(*) FROM "
          "qelto_installedapplication a WHERE a.snapshot_id = s.snapshot_id) <> CAST(? AS integer)",
          {applications}),
      "0");
  EXPECT_EQ(one(*database, "SELECT max(version) FROM schema_version"), "1")
      << "the tables were made once";
}

TEST_P(Concurrency, ReadersGoOnWhileALoaderHoldsItsTransaction) {
  auto store = openStore();
  store->add(snapshotOfJson(sampleInventory().dump(), store->tables(), "json"));
  auto writer = openDatabase(target);
  writer->execute(writer->dialect().beginWrite);
  writer->execute("DELETE FROM qelto_installedapplication");

  auto reader = openDatabase(target);
  EXPECT_EQ(one(*reader, "SELECT count(*) FROM qelto_installedapplication"),
            std::to_string(countOf(sampleInventory(), "QELTO_InstalledApplication")));
  // The program too: opening an up-to-date store writes nothing, so it does not wait.
  const pid_t query = spawn({VRXSTORE, "query", target, "latest"}, dir / "query.log");
  const int status = waitFor(query);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << readText(dir / "query.log");
  EXPECT_NE(readText(dir / "query.log").find("WKS-042"), std::string::npos);
  writer->execute("ROLLBACK");
}

STORE_ENGINES(Concurrency);

}  // namespace
