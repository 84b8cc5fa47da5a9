#include "store/views.h"

namespace vrxstore {
namespace {

// What differs between each snapshot and the one before it in `table`, its rows told apart by
// `key` and compared by `value`: added, removed, changed.
std::string changeView(const std::string& table, const std::string& key, const std::string& value) {
  const std::string same = "machine_key = s.machine_key AND ";
  const std::string head =
      "SELECT s.machine_key, s.previous_id AS from_snapshot, s.snapshot_id AS to_snapshot, ";
  const std::string steps = " FROM snapshot_step s JOIN " + table + " ";
  return head + "'added' AS change, a." + key + " AS name, CAST(NULL AS text) AS from_value, a." +
         value + " AS to_value" + steps + "a ON a." + same +
         "a.snapshot_id = s.snapshot_id WHERE " +
         "s.previous_id IS NOT NULL AND NOT EXISTS (SELECT 1 FROM " + table + " b WHERE b." + same +
         "b.snapshot_id = s.previous_id AND b." + key + " = a." + key + ") UNION ALL " + head +
         "'removed', b." + key + ", b." + value + ", CAST(NULL AS text)" + steps + "b ON b." +
         same + "b.snapshot_id = s.previous_id WHERE NOT EXISTS (SELECT 1 FROM " + table +
         " a WHERE a." + same + "a.snapshot_id = s.snapshot_id AND a." + key + " = b." + key +
         ") UNION ALL " + head + "'changed', a." + key + ", b." + value + ", a." + value + steps +
         "a ON a." + same + "a.snapshot_id = s.snapshot_id JOIN " + table + " b ON b." + same +
         "b.snapshot_id = s.previous_id AND b." + key + " = a." + key + " WHERE NOT EXISTS " +
         "(SELECT 1 FROM " + table + " x WHERE x." + same + "x.snapshot_id = s.previous_id AND x." +
         key + " = a." + key + " AND x." + value + " = a." + value + ") AND NOT EXISTS (SELECT 1 " +
         "FROM " + table + " y WHERE y." + same + "y.snapshot_id = s.snapshot_id AND y." + key +
         " = b." + key + " AND y." + value + " = b." + value + ")";
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
      {"application_change",
       changeView("qelto_installedapplication", "productname", "productversion"),
       "qelto_installedapplication",
       {"productname", "productversion"}},
      {"fix_change",
       changeView("qelto_installedfix", "productversion", "productname"),
       "qelto_installedfix",
       {"productversion", "productname"}},
      {"system_variable_change",
       changeView("qelto_systemenvironmentvariable", "settingid", "settingvalue"),
       "qelto_systemenvironmentvariable",
       {"settingid", "settingvalue"}},
      {"user_variable_change",
       changeView("qelto_userenvironmentvariable", "settingid", "settingvalue"),
       "qelto_userenvironmentvariable",
       {"settingid", "settingvalue"}},
  };
  for (View& view : made) view.statement = create + view.name + " AS " + view.statement;
  return made;
}

}  // namespace vrxstore
