#include "accounts/account_on_system.h"

#include "accounts/account_names.h"
#include "accounts/association_ends.h"
#include "frame/schema_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

int AccountOnSystem::buildCIMAssociation(boost::shared_ptr<ICIMNamespace> ns) {
  const TCIMOptions options;
  auto systemClass = ns->GetClass(constants::kComputerSystemClass, options);
  auto accountClass = ns->GetClass(constants::kAccountClass, options);
  const InstanceList systems = snapshotInstances(systemClass);
  const InstanceList accounts = snapshotInstances(accountClass);
  int count = 0;
  for (const auto& system : systems) {
    for (const auto& account : accounts) {
      buildCIMInstance(associationRoles(system->GetReference(TCIMOptions()),
                                        account->GetReference(TCIMOptions())));
      ++count;
    }
  }
  return count;
}

}  // namespace installedapps_col
