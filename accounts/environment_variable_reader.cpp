#include "accounts/environment_variable_reader.h"

#include "accounts/account_names.h"
#include "frame/registry_reader.h"

namespace installedapps_col {

using namespace NZARVEK20;

std::vector<PropertyMap> EnvironmentVariableReader::read(const std::string& className) {
  const bool system = className == constants::kSystemEnvironmentVariableClass;
  const FactMap values = RegistryReader().readAllValues(
      system ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
      system ? constants::kSystemEnvironmentKey : constants::kUserEnvironmentKey);
  std::vector<PropertyMap> records;
  for (const auto& value : values)
    records.push_back({{constants::kSettingID, TCIMValue(value.first)},
                       {constants::kSettingValue, TCIMValue(value.second)}});
  return records;
}

}  // namespace installedapps_col
