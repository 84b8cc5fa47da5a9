#include "accounts/environment_variable_info.h"

#include "accounts/account_names.h"
#include "accounts/environment_variable_reader.h"
#include "frame/schema_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

int EnvironmentVariableInfo::getCIMInstances() {
  const std::string className = getCIMClass()->GetName(TCIMOptions());
  const std::vector<PropertyMap> records = EnvironmentVariableReader().read(className);
  int built = 0;
  for (const PropertyMap& record : records) {
    try {
      buildCIMInstance(record);
      ++built;
    } catch (const TVRXException& e) {
      logger->logError(e.what());
    }
  }
  return built;
}

int OSEnvironmentVariable::buildCIMAssociation(boost::shared_ptr<ICIMNamespace> ns) {
  const TCIMOptions options = {{"nspID", TCIMValue("plugin")}};
  auto variableClass = ns->GetClass(constants::kEnvironmentVariableClass, options);
  auto systemClass = ns->GetClass(constants::kOperatingSystemClass, options);
  std::vector<boost::shared_ptr<ICIMInstance>> variables, systems;
  variableClass->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(variables), true,
                                    TCIMOptions());
  systemClass->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(systems), true, TCIMOptions());
  int built = 0;
  for (const auto& system : systems) {
    const TCIMValue element(system->GetReference(TCIMOptions()));
    for (const auto& variable : variables) {
      buildCIMInstance({{constants::kElement, element},
                        {constants::kSetting, TCIMValue(variable->GetReference(TCIMOptions()))}});
      ++built;
    }
  }
  return built;
}

}  // namespace installedapps_col
