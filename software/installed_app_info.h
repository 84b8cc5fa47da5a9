// The applications of the three registry places, each once and no fix
// among them, as instances of QELTO_InstalledApplication.
#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "frame/get_info.h"
#include "software/pattern_set.h"

namespace installedapps_col {

class InstalledAppInfo : public GetInfo {
 public:
  explicit InstalledAppInfo(boost::shared_ptr<NZARVEK20::ICIMClass> cls);

  int getCIMInstances() override;

  // The whole enumeration; once per object, since names seen stay seen.
  FactList getInfo();
  // True for a record with a name that is new and that is no fix; the
  // name is remembered either way.
  bool isApplication(const FactMap& record);
  bool isHotfix(std::string name);
  static bool hasValue(const FactMap& record, const std::string& name);
  // SystemID (the machine's name) and CollectionID ("").
  PropertyMap getKeyProperties();

 private:
  // Packed Installer version (major 8 bits, minor 8 bits, build 16 bits)
  // as major.minor.build.
  static void rewriteInstallerVersion(FactMap& record);
  const PatternSet& hotfixPatterns();

  std::vector<std::string> seenNames;
  std::vector<std::string> hotfixKeys;
  // Index of seenNames and the fix texts of hotfixKeys, so that the filter
  // costs the same per record however many products and fixes there are.
  std::unordered_set<std::string> seenIndex;
  std::unique_ptr<PatternSet> hotfixPatternSet;
};

}  // namespace installedapps_col
