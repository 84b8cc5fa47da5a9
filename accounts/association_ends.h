// What the account associations share: a snapshot of the instances at one
// end, and the values of one association instance.
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

#include "frame/types.h"
#include "host/cim_interfaces.h"

namespace installedapps_col {

using InstanceList = std::vector<boost::shared_ptr<NZARVEK20::ICIMInstance>>;

// The instances of `cls` and its subclasses committed so far, in commit
// order; what is committed later is not seen.
InstanceList snapshotInstances(boost::shared_ptr<NZARVEK20::ICIMClass> cls);

// GroupComponent and PartComponent.
PropertyMap associationRoles(const NZARVEK20::TCIMReference& group,
                             const NZARVEK20::TCIMReference& part);

}  // namespace installedapps_col
