// The tree of the optional components: the operating system over each
// top-level component, and each component over those that name it as
// their parent.
#pragma once

#include <string>
#include <vector>

#include "frame/get_info.h"

namespace installedapps_col {

// QELTO_OSBaseComponent: every operating system with every component whose
// Parent is empty.
class OSBaseComponent : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int buildCIMAssociation(boost::shared_ptr<NZARVEK20::ICIMNamespace> ns) override;
};

// QELTO_OSSubComponent: each component that names a parent, under the first
// component of that name, across INF files.
class OSSubComponent : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int buildCIMAssociation(boost::shared_ptr<NZARVEK20::ICIMNamespace> ns) override;

  // The first instance whose Name equals `parentName` without regard to
  // case; empty when none does.
  boost::shared_ptr<NZARVEK20::ICIMInstance> findParentInstance(
      std::string parentName, std::vector<boost::shared_ptr<NZARVEK20::ICIMInstance>> instances);
};

}  // namespace installedapps_col
