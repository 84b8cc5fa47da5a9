// The fixes of Windows, from WMI when it has any, else from the Updates
// tree of the registry, as records of ProductName, ProductVersion,
// ProductVendor, InstalledBy and ProductInstallDate.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "frame/types.h"

namespace installedapps_col {

// A parent key's path to the paths still to be looked at under it.
using KeyWorkList = std::multimap<std::string, std::vector<std::string>>;

class WindowsFixInfo {
 public:
  WindowsFixInfo();
  virtual ~WindowsFixInfo() {}

  // Walks the Updates tree, then takes one route's records.
  FactList getInfo();

  // One level further down: each path of `work` replaced by its sub-keys
  // that are still to be walked.
  KeyWorkList expandLevel(KeyWorkList work);
  // The sub-keys of `path` to walk on. A key with no sub-keys, or with a
  // sub-key named filelist in any case, is a fix; filelist is not entered.
  std::vector<std::string> expandKey(std::string path);

  // One record per fix key with a name not seen before; values under the
  // Updates tree win over those of the Uninstall key of the same name.
  FactList getPropertiesFromRegistry();
  // The facts that `raw`, named by registry values, holds of a fix.
  FactMap mapFixProperties(FactMap raw);

  // One record per Win32_QuickFixEngineering object; empty when any step
  // of the query fails, which is logged.
  FactList getPropertiesFromWMI();

 private:
  std::vector<std::string> fixKeys;
  // Property to registry value name.
  std::multimap<std::string, std::string> fixValueNames;
};

}  // namespace installedapps_col
