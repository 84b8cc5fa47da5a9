// The changes between snapshots and the named questions, on a small fleet.
#include "store/questions.h"

#include <algorithm>

#include "store/changes.h"
#include "store/inventory_file.h"
#include "tests/store/engine_fixture.h"
#include "tests/store/sample_inventory.h"

namespace {

using namespace storetest;
using namespace vrxstore;
using nlohmann::json;

class Questions : public EngineTest {
 protected:
  std::string load(const json& inventory) {
    return store->add(snapshotOfJson(inventory.dump(), store->tables(), "json")).snapshotId;
  }
  void SetUp() override {
    EngineTest::SetUp();
    if (IsSkipped()) return;
    store = openStore();
  }
  std::unique_ptr<Store> store;
};

json takenAt(json inventory, const std::string& localTime) {
  firstOf(inventory, "QELTO_TimeZone")["properties"]["LocalDateTime"] = localTime;
  return inventory;
}

json renamed(json inventory, const std::string& machine) {
  firstOf(inventory, "QELTO_ComputerSystem")["properties"]["Name"] = machine;
  return inventory;
}

// One line per change, sorted, so that the order within a subject does not matter.
std::string described(const std::vector<Change>& changes) {
  std::vector<std::string> lines;
  for (const Change& c : changes)
    lines.push_back(c.subject + " " + c.change + " " + c.name + ": " + c.from + " -> " + c.to +
                    "\n");
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string& line : lines) text += line;
  return text;
}

TEST_P(Questions, ChangesBetweenSnapshotsInTheOrderTheyWereTaken) {
  const json before = takenAt(sampleInventory(), "20261101090000.000000+060");
  // Half an hour later, after the clock left summer time: earlier on its face.
  json after = takenAt(sampleInventory(), "20261101083000.000000+000");
  addApplication(after, "Added Application", "1.0");
  auto& changed = firstOf(after, "QELTO_InstalledApplication")["properties"];
  const std::string changedName = changed["ProductName"];
  const std::string oldVersion = changed["ProductVersion"];
  changed["ProductVersion"] = "99.1";
  removeWhere(after, "QELTO_InstalledFix", "ProductVersion", "KB5034441");
  for (auto& instance : after["instances"])
    if (instance["class"] == "QELTO_SystemEnvironmentVariable" &&
        instance["properties"]["SettingID"] == "ComSpec")
      instance["properties"]["SettingValue"] = "C:\\Shell\\cmd.exe";
  std::string comSpec;
  for (const auto& instance : before["instances"])
    if (instance["class"] == "QELTO_SystemEnvironmentVariable" &&
        instance["properties"]["SettingID"] == "ComSpec")
      comSpec = instance["properties"]["SettingValue"];

  // The later one loaded first: the order is the machine's time, not the loading's.
  const std::string later = load(after);
  const std::string earlier = load(before);
  Database& db = store->database();
  const SnapshotPair pair = snapshotsToCompare(db, "WKS-042", std::nullopt, std::nullopt);
  EXPECT_EQ(pair.from, earlier);
  EXPECT_EQ(pair.to, later);

  EXPECT_EQ(described(changesBetween(db, "WKS-042", pair)),
            "application added Added Application:  -> 1.0\n"
            "application changed " +
                changedName + ": " + oldVersion +
                " -> 99.1\n"
                "fix removed KB5034441: Security Update -> \n"
                "system variable changed ComSpec: " +
                comSpec + " -> C:\\Shell\\cmd.exe\n");
  // The views say the same, from each snapshot's previous one.
  Answer view{{}, {}};
  for (const char* name : {"application_change", "fix_change", "system_variable_change"})
    for (const Row& row : db.query(std::string("SELECT change, name, from_value, to_value, "
                                               "from_snapshot FROM ") +
                                       name + " WHERE machine_key = ? AND to_snapshot = ?",
                                   {"WKS-042", later}))
      view.rows.push_back({row[0].value_or(""), row[1].value_or(""), row[2].value_or(""),
                           row[3].value_or(""), row[4].value_or("")});
  std::sort(view.rows.begin(), view.rows.end());
  ASSERT_EQ(view.rows.size(), 4u);
  EXPECT_EQ(view.rows[0],
            (std::vector<std::string>{"added", "Added Application", "", "1.0", earlier}));
  EXPECT_EQ(view.rows[1],
            (std::vector<std::string>{"changed", changedName, oldVersion, "99.1", earlier}));
  EXPECT_EQ(view.rows[2], (std::vector<std::string>{"changed", "ComSpec", comSpec,
                                                    "C:\\Shell\\cmd.exe", earlier}));
  EXPECT_EQ(view.rows[3],
            (std::vector<std::string>{"removed", "KB5034441", "Security Update", "", earlier}));
  EXPECT_EQ(one(db, "SELECT count(*) FROM application_change WHERE to_snapshot = ?", {earlier}),
            "0")
      << "the first snapshot has nothing to change from";

  // Backwards, the same changes the other way round.
  EXPECT_EQ(described(changesBetween(db, "WKS-042", {later, earlier})),
            "application changed " + changedName + ": 99.1 -> " + oldVersion +
                "\n"
                "application removed Added Application: 1.0 -> \n"
                "fix added KB5034441:  -> Security Update\n"
                "system variable changed ComSpec: C:\\Shell\\cmd.exe -> " +
                comSpec + "\n");

  EXPECT_THROW(snapshotsToCompare(db, "WKS-042", std::nullopt, earlier), std::runtime_error);
  EXPECT_THROW(snapshotsToCompare(db, "NO-SUCH", std::nullopt, std::nullopt), std::runtime_error);
}

TEST_P(Questions, AnAccountChangeIsTheSameInTheDiffAndInItsView) {
  const json before = takenAt(sampleInventory(), "20261101090000.000000+060");
  json after = takenAt(sampleInventory(), "20261102090000.000000+060");
  auto& account = firstOf(after, "QELTO_Account")["properties"];
  const std::string name = account["Name"];
  account["AccountEnabled"] = !account.value("AccountEnabled", true);
  const std::string earlier = load(before);
  const std::string later = load(after);
  Database& db = store->database();
  const std::vector<Change> changes = changesBetween(db, "WKS-042", {earlier, later});
  ASSERT_EQ(changes.size(), 1u) << described(changes);
  EXPECT_EQ(changes[0].subject, "account");
  EXPECT_EQ(changes[0].change, "changed");
  EXPECT_EQ(changes[0].name, name);
  EXPECT_NE(changes[0].from, changes[0].to);
  const std::vector<Row> rows = db.query(
      "SELECT change, name, from_value, to_value FROM account_change WHERE to_snapshot = ?",
      {later});
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0][0], "changed");
  EXPECT_EQ(rows[0][1], name);
  EXPECT_EQ(rows[0][2], changes[0].from);
  EXPECT_EQ(rows[0][3], changes[0].to);
}

TEST_P(Questions, NamedQuestionsAnswerFromEachMachinesNewestSnapshot) {
  json old042 = takenAt(sampleInventory(), "20261101090000.000000+060");
  removeWhere(old042, "QELTO_InstalledFix", "ProductVersion", "KB5034441");
  addApplication(old042, "Fleet Tool", "10.0.4000");
  json new042 = takenAt(sampleInventory(), "20261108090000.000000+060");
  addApplication(new042, "Fleet Tool", "9.12");
  json wks043 = renamed(sampleInventory(), "WKS-043");
  const std::string account = firstOf(wks043, "QELTO_Account")["properties"]["Name"];
  firstOf(wks043, "QELTO_Account")["properties"].erase("LastLogon");
  firstOf(old042, "QELTO_Account")["properties"].erase("LastLogon");
  removeWhere(wks043, "QELTO_InstalledFix", "ProductVersion", "KB5034441");
  addApplication(wks043, "Fleet Tool", "10.0.4000");
  load(old042);
  const std::string newest042 = load(new042);
  const std::string only043 = load(wks043);
  Database& db = store->database();

  const Answer latest = ask(db, "latest", {});
  ASSERT_EQ(latest.rows.size(), 2u);
  EXPECT_EQ(latest.rows[0][0] + " " + latest.rows[0][1], "WKS-042 " + newest042);
  EXPECT_EQ(latest.rows[1][0] + " " + latest.rows[1][1], "WKS-043 " + only043);

  const Answer without = ask(db, "without-fix", {"KB5034441"});
  ASSERT_EQ(without.rows.size(), 1u) << "WKS-042 lacked it only before";
  EXPECT_EQ(without.rows[0][0], "WKS-043");

  const Answer below = ask(db, "below", {"Fleet Tool", "10.0"});
  ASSERT_EQ(below.rows.size(), 1u) << "9.12 < 10.0 <= 10.0.4000";
  EXPECT_EQ(below.rows[0][0] + " " + below.rows[0][2], "WKS-042 9.12");

  // From the newest snapshots only: WKS-042's account has logged on since.
  std::vector<std::string> expected;
  for (const json* inventory : {&new042, &wks043})
    for (const auto& instance : (*inventory)["instances"])
      if (instance["class"] == "QELTO_Account" && !instance["properties"].contains("LastLogon"))
        expected.push_back((inventory == &new042 ? "WKS-042 " : "WKS-043 ") +
                           instance["properties"]["Name"].get<std::string>());
  std::vector<std::string> never;
  for (const auto& row : ask(db, "never-logged-on", {}).rows)
    never.push_back(row[0] + " " + row[1]);
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(never, expected);
  EXPECT_NE(std::find(never.begin(), never.end(), "WKS-043 " + account), never.end());

  const Answer apps = ask(db, "applications", {"WKS-043"});
  EXPECT_EQ(apps.rows.size(), countOf(wks043, "QELTO_InstalledApplication"));

  EXPECT_THROW(ask(db, "below", {"Fleet Tool"}), std::invalid_argument);
  EXPECT_THROW(ask(db, "nonsense", {}), std::invalid_argument);
}

STORE_ENGINES(Questions);

}  // namespace
