#include "components/component_associations.h"

#include "components/component_names.h"
#include "frame/lower_case.h"
#include "frame/schema_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

using Instances = std::vector<boost::shared_ptr<ICIMInstance>>;

const TCIMOptions& pluginOptions() {
  static const TCIMOptions options = {
      {constants::kPluginLookupOption, TCIMValue(constants::kPluginLookupValue)}};
  return options;
}

Instances instancesOf(boost::shared_ptr<ICIMNamespace> ns, const char* className) {
  Instances instances;
  ns->GetClass(className, pluginOptions())
      ->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(instances), true, TCIMOptions());
  return instances;
}

std::string textOf(const boost::shared_ptr<ICIMInstance>& instance, const char* property) {
  return instance->GetProperty(property, TCIMOptions())->GetValue(TCIMOptions());
}

// A class without the property asked for passes that element over; any
// other failure ends the association.
void rethrowUnlessNoSuchProperty(const TVRXException& e) {
  if (e.GetStatusCode() != VRX_NO_SUCH_PROPERTY) throw e;
}

PropertyMap association(const boost::shared_ptr<ICIMInstance>& group,
                        const boost::shared_ptr<ICIMInstance>& part) {
  return {{constants::kGroupComponent, TCIMValue(group->GetReference(TCIMOptions()))},
          {constants::kPartComponent, TCIMValue(part->GetReference(TCIMOptions()))}};
}

}  // namespace

int OSBaseComponent::buildCIMAssociation(boost::shared_ptr<ICIMNamespace> ns) {
  int count = 0;
  try {
    const Instances systems = instancesOf(ns, constants::kOperatingSystemClass);
    const Instances components = instancesOf(ns, constants::kOSComponentClass);
    for (const auto& system : systems) {
      for (const auto& component : components) {
        try {
          if (!textOf(component, constants::kParent).empty()) continue;
          buildCIMInstance(association(system, component));
          ++count;
        } catch (const TVRXException& e) {
          rethrowUnlessNoSuchProperty(e);
        }
      }
    }
  } catch (const TVRXException&) {
  }
  return count;
}

int OSSubComponent::buildCIMAssociation(boost::shared_ptr<ICIMNamespace> ns) {
  int count = 0;
  try {
    const Instances components = instancesOf(ns, constants::kOSComponentClass);
    for (const auto& child : components) {
      try {
        const std::string parent = textOf(child, constants::kParent);
        if (parent.empty()) continue;
        const boost::shared_ptr<ICIMInstance> found = findParentInstance(parent, components);
        if (!found) {
          logger->logDebug(constants::kParentMissing + parent);
          continue;
        }
        buildCIMInstance(association(found, child));
        ++count;
      } catch (const TVRXException& e) {
        rethrowUnlessNoSuchProperty(e);
      }
    }
  } catch (const TVRXException&) {
  }
  return count;
}

boost::shared_ptr<ICIMInstance> OSSubComponent::findParentInstance(std::string parentName,
                                                                   Instances instances) {
  const std::string wanted = lowerCase(parentName);
  for (const auto& instance : instances) {
    try {
      if (lowerCase(textOf(instance, constants::kName)) == wanted) return instance;
    } catch (const TVRXException& e) {
      rethrowUnlessNoSuchProperty(e);
    }
  }
  return boost::shared_ptr<ICIMInstance>();
}

}  // namespace installedapps_col
