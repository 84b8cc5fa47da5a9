#include "accounts/association_ends.h"

#include "frame/schema_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

InstanceList snapshotInstances(boost::shared_ptr<ICIMClass> cls) {
  InstanceList instances;
  cls->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(instances), true, TCIMOptions());
  return instances;
}

PropertyMap associationRoles(const TCIMReference& group, const TCIMReference& part) {
  return {{constants::kGroupComponent, TCIMValue(group)},
          {constants::kPartComponent, TCIMValue(part)}};
}

}  // namespace installedapps_col
