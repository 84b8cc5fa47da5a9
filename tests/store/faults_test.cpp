// A loader killed in the middle of its snapshot, and a disk that fills under it: the store is
// left as it was, and the next load works.
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

class LoaderFaults : public EngineTest {
 protected:
  // A store holding the sample machine's snapshot, and a larger inventory of another machine.
  void prepare() {
    {
      auto store = openStore();
      store->add(snapshotOfJson(sampleInventory().dump(), store->tables(), "json"));
    }
    nlohmann::json big = sampleInventory();
    firstOf(big, "QELTO_ComputerSystem")["properties"]["Name"] = "WKS-BIG";
    for (int i = 0; i < 3000; ++i)
      addApplication(big, "Bulk Application " + std::to_string(i), "1.0");
    bigFile = (dir / "big.json").string();
    writeText(bigFile, big.dump());
  }
  void expectAsItWas() {
    auto database = openDatabase(target);
    EXPECT_EQ(one(*database, "SELECT count(*) FROM snapshot"), "1");
    EXPECT_EQ(one(*database, "SELECT count(*) FROM machine"), "1");
    EXPECT_EQ(one(*database, "SELECT count(*) FROM qelto_installedapplication"),
              std::to_string(countOf(sampleInventory(), "QELTO_InstalledApplication")));
  }
  void expectNextLoadWorks() {
    const int status = waitFor(spawn({VRXSTORE, "load", target, bigFile}, dir / "again.log"));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << readText(dir / "again.log");
    EXPECT_EQ(one(*openDatabase(target), "SELECT count(*) FROM snapshot"), "2");
  }
  // vrxstore load of the large inventory where no file may grow past the store's size and a
  // little more; `signal` is "ignore" for a write that fails, "" for a loader that the signal
  // kills.
  int loadWithFileLimit(const std::string& signal) {
    const auto limit = fs::file_size(target) / 1024 + 32;
    const std::string script = (signal == "ignore" ? "trap '' XFSZ; " : "") +
                               std::string("ulimit -f ") + std::to_string(limit) + "; exec " +
                               VRXSTORE + " load " + target + " " + bigFile;
    return waitFor(spawn({"/bin/bash", "-c", script}, dir / "limited.log"));
  }
  std::string bigFile;
};

TEST_P(LoaderFaults, KilledLoaderLeavesNoPartialSnapshot) {
  prepare();
  if (GetParam() == "sqlite") {
    // Killed by the file size limit while its transaction is written.
    const int status = loadWithFileLimit("");
    ASSERT_TRUE(WIFSIGNALED(status)) << readText(dir / "limited.log");
    EXPECT_EQ(WTERMSIG(status), SIGXFSZ);
  } else {
    // Held in the middle of its snapshot by a lock on a later table, then killed.
    auto holder = openDatabase(target);
    holder->execute("BEGIN");
    holder->execute("LOCK TABLE qelto_oscomponent IN ACCESS EXCLUSIVE MODE");
    const pid_t loader = spawn({VRXSTORE, "load", target, bigFile}, dir / "loader.log");
    auto watcher = openDatabase(target);
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (one(*watcher,
               "SELECT count(*) FROM pg_stat_activity WHERE wait_event_type = 'Lock' AND "
               "query LIKE 'COPY%'") != "1" &&
           std::chrono::steady_clock::now() < giveUp)
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ASSERT_EQ(
        one(*openDatabase(target), "SELECT count(*) FROM snapshot WHERE machine_key = 'WKS-BIG'"),
        "0");
    ::kill(loader, SIGKILL);
    EXPECT_EQ(WTERMSIG(waitFor(loader)), SIGKILL);
    holder->execute("ROLLBACK");
  }
  expectAsItWas();
  expectNextLoadWorks();
}

TEST_P(LoaderFaults, FullDiskIsOneLineAndTheStoreStaysAsItWas) {
  if (GetParam() != "sqlite") GTEST_SKIP() << "the server's disk is the server's to report";
  prepare();
  const int status = loadWithFileLimit("ignore");
  const std::string log = readText(dir / "limited.log");
  ASSERT_TRUE(WIFEXITED(status)) << log;
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
  EXPECT_EQ(log.rfind("vrxstore: " + bigFile + ": " + target + ": ", 0), 0u) << log;
  expectAsItWas();
  expectNextLoadWorks();
}

STORE_ENGINES(LoaderFaults);

}  // namespace
