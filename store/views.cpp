#include "store/views.h"

#include <algorithm>

#include "store/change_subjects.h"

namespace vrxstore {
namespace {

// What differs between each snapshot and the one before it in the subject's table: rows added,
// removed, and changed (a row of the same key whose value is no value the other snapshot has).
std::string changeView(const ChangeSubject& subject) {
  const std::string& table = subject.table;
  const std::string& key = subject.key;
  auto value = [&](const char* alias) { return valueOf(subject, alias); };
  auto row = [&](const char* alias, const char* snapshot) {
    return std::string(table) + " " + alias + " ON " + alias + ".machine_key = s.machine_key AND " +
           alias + ".snapshot_id = s." + snapshot;
  };
  auto without = [&](const char* alias, const char* snapshot, const std::string& match) {
    return std::string("NOT EXISTS (SELECT 1 FROM ") + table + " " + alias + " WHERE " + alias +
           ".machine_key = s.machine_key AND " + alias + ".snapshot_id = s." + snapshot + " AND " +
           match + ")";
  };
  const std::string head =
      "SELECT s.machine_key, s.previous_id AS from_snapshot, s.snapshot_id AS to_snapshot, ";
  return head + "'added' AS change, a." + key + " AS name, CAST(NULL AS text) AS from_value, " +
         value("a") + " AS to_value FROM snapshot_step s JOIN " + row("a", "snapshot_id") +
         " WHERE s.previous_id IS NOT NULL AND " +
         without("b", "previous_id", "b." + key + " = a." + key) + " UNION ALL " + head +
         "'removed', b." + key + ", " + value("b") +
         ", CAST(NULL AS text) FROM snapshot_step s JOIN " + row("b", "previous_id") + " WHERE " +
         without("a", "snapshot_id", "a." + key + " = b." + key) + " UNION ALL " + head +
         "'changed', a." + key + ", " + value("b") + ", " + value("a") +
         " FROM snapshot_step s JOIN " + row("a", "snapshot_id") + " JOIN " +
         row("b", "previous_id") + " AND b." + key + " = a." + key + " WHERE " +
         without("x", "previous_id",
                 "x." + key + " = a." + key + " AND " + value("x") + " = " + value("a")) +
         " AND " +
         without("y", "snapshot_id",
                 "y." + key + " = b." + key + " AND " + value("y") + " = " + value("b"));
}

}  // namespace

std::vector<View> views(const Dialect& dialect) {
  const std::string create = std::string(dialect.createView) + " ";
  std::vector<View> made = {
      {"latest_snapshot",
       "SELECT s.machine_key, s.snapshot_id, s.taken_at, s.taken_at_cim, s.loaded_at FROM "
       "snapshot s WHERE NOT EXISTS (SELECT 1 FROM snapshot n WHERE n.machine_key = "
       "s.machine_key AND (n.taken_at > s.taken_at OR (n.taken_at = s.taken_at AND "
       "n.snapshot_id > s.snapshot_id)))",
       "",
       {}},
      {"snapshot_step",
       "SELECT s.machine_key, s.snapshot_id, (SELECT p.snapshot_id FROM snapshot p WHERE "
       "p.machine_key = s.machine_key AND (p.taken_at < s.taken_at OR (p.taken_at = s.taken_at "
       "AND p.snapshot_id < s.snapshot_id)) ORDER BY p.taken_at DESC, p.snapshot_id DESC LIMIT 1) "
       "AS previous_id FROM snapshot s",
       "",
       {}},
      {"application_now",
       "SELECT a.machine_key, a.snapshot_id, a.productname, a.productversion, a.productvendor, "
       "a.productinstalldate FROM qelto_installedapplication a JOIN latest_snapshot l ON "
       "l.machine_key = a.machine_key AND l.snapshot_id = a.snapshot_id",
       "qelto_installedapplication",
       {"productname", "productversion", "productvendor", "productinstalldate"}},
      {"fix_now",
       "SELECT f.machine_key, f.snapshot_id, f.productversion AS fix_id, f.productname, "
       "f.installedby, f.productinstalldate FROM qelto_installedfix f JOIN latest_snapshot l ON "
       "l.machine_key = f.machine_key AND l.snapshot_id = f.snapshot_id",
       "qelto_installedfix",
       {"productversion", "productname", "installedby", "productinstalldate"}},
  };
  for (const ChangeSubject& subject : changeSubjects()) {
    std::string name = subject.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    made.push_back({name + "_change", changeView(subject), subject.table, subject.columns});
  }
  for (View& view : made) view.statement = create + view.name + " AS " + view.statement;
  return made;
}

}  // namespace vrxstore
