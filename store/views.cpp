#include "store/views.h"

namespace vrxstore {

std::vector<View> views(const Dialect& dialect) {
  const std::string create = dialect.createView;
  return {
      {create +
           " latest_snapshot AS SELECT s.machine_key, s.snapshot_id, s.taken_at, s.taken_at_cim, "
           "s.loaded_at FROM snapshot s WHERE NOT EXISTS (SELECT 1 FROM snapshot n WHERE "
           "n.machine_key = s.machine_key AND (n.taken_at > s.taken_at OR (n.taken_at = "
           "s.taken_at AND n.snapshot_id > s.snapshot_id)))",
       "",
       {}},
      {create +
           " application_now AS SELECT a.machine_key, a.snapshot_id, a.productname, "
           "a.productversion, a.productvendor, a.productinstalldate FROM "
           "qelto_installedapplication a JOIN latest_snapshot l ON l.machine_key = a.machine_key "
           "AND l.snapshot_id = a.snapshot_id",
       "qelto_installedapplication",
       {"productname", "productversion", "productvendor", "productinstalldate"}},
      {create +
           " fix_now AS SELECT f.machine_key, f.snapshot_id, f.productversion AS fix_id, "
           "f.productname, f.installedby, f.productinstalldate FROM qelto_installedfix f JOIN "
           "latest_snapshot l ON l.machine_key = f.machine_key AND l.snapshot_id = f.snapshot_id",
       "qelto_installedfix",
       {"productversion", "productname", "installedby", "productinstalldate"}},
  };
}

}  // namespace vrxstore
