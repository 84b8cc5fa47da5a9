#include "accounts/current_account_on_system.h"

#include "accounts/account_names.h"
#include "accounts/association_ends.h"
#include "accounts/user_account_reader.h"
#include "frame/lower_case.h"
#include "frame/schema_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

int CurrentAccountOnSystem::buildCIMAssociation(boost::shared_ptr<ICIMNamespace> ns) {
  const TCIMOptions options = {
      {constants::kPluginLookupOption, TCIMValue(constants::kPluginLookupValue)}};
  auto accountClass = ns->GetClass(constants::kAccountClass, options);
  auto systemClass = ns->GetClass(constants::kComputerSystemClass, options);
  const InstanceList accounts = snapshotInstances(accountClass);
  const InstanceList systems = snapshotInstances(systemClass);
  const std::string user = lowerCase(UserAccountReader().getCurrentUserName());
  int count = 0;
  for (const auto& system : systems) {
    const TCIMReference group = system->GetReference(TCIMOptions());
    for (const auto& account : accounts) {
      const TCIMReference part = account->GetReference(TCIMOptions());
      try {
        const std::string id =
            account->GetProperty(constants::kUserID, TCIMOptions())->GetValue(TCIMOptions());
        if (lowerCase(id) != user) continue;
        buildCIMInstance(associationRoles(group, part));
        ++count;
        break;
      } catch (const TVRXException& e) {
        if (e.GetStatusCode() != VRX_NO_SUCH_PROPERTY) throw e;
      }
    }
  }
  return count;
}

}  // namespace installedapps_col
