#include "plugin/system_information.h"

#include <exception>
#include <vector>

#include "accounts/account_names.h"
#include "accounts/account_on_system.h"
#include "accounts/current_account_on_system.h"
#include "accounts/environment_variable_info.h"
#include "accounts/os_user_info.h"
#include "components/component_associations.h"
#include "components/component_names.h"
#include "components/os_component_info.h"
#include "frame/platform.h"
#include "frame/schema_names.h"
#include "os/os_info.h"
#include "os/os_names.h"
#include "os/page_file_info.h"
#include "os/time_zone_info.h"
#include "plugin/plugin_names.h"
#include "software/installed_app_info.h"
#include "software/installed_fix_info.h"
#include "software/software_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

SystemInformation::SystemInformation(boost::shared_ptr<ICIMNamespace> outputNamespace)
    : logger(LogMessage::getInstance()), outputNamespace(std::move(outputNamespace)) {
  if (!applicationsExcluded())
    table[constants::kInstalledApplicationClass] = &SystemInformation::make<InstalledAppInfo>;
  table[constants::kInstalledFixClass] = &SystemInformation::make<InstalledFixInfo>;
  table[constants::kOSComponentClass] = &SystemInformation::make<OSComponentInfo>;
  table[constants::kOSBaseComponentClass] = &SystemInformation::make<OSBaseComponent>;
  table[constants::kOSSubComponentClass] = &SystemInformation::make<OSSubComponent>;
  table[constants::kPageFileClass] = &SystemInformation::make<PageFileInfo>;
  table[constants::kOperatingSystemClass] = &SystemInformation::make<OSInfo>;
  table[constants::kTimeZoneClass] = &SystemInformation::make<TTimeZoneinfo>;
  table[constants::kAccountClass] = &SystemInformation::make<OSUserInfo>;
  table[constants::kSystemEnvironmentVariableClass] =
      &SystemInformation::make<EnvironmentVariableInfo>;
  table[constants::kUserEnvironmentVariableClass] =
      &SystemInformation::make<EnvironmentVariableInfo>;
  table[constants::kOSEnvironmentVariableClass] = &SystemInformation::make<OSEnvironmentVariable>;
  table[constants::kAccountOnSystemClass] = &SystemInformation::make<AccountOnSystem>;
  table[constants::kCurrentAccountOnSystemClass] = &SystemInformation::make<CurrentAccountOnSystem>;
}

SystemInformation::~SystemInformation() {}

bool SystemInformation::applicationsExcluded() {
  std::vector<char> buffer(32767, 0);
  const DWORD length = GetEnvironmentVariableA(constants::kExcludeAppsVariable, buffer.data(),
                                               static_cast<DWORD>(buffer.size()));
  return length != 0 && buffer[0] != '\0';
}

int SystemInformation::runCollector(const std::string& className,
                                    boost::shared_ptr<ICIMClass> cimClass) {
  auto row = table.find(className);
  if (row == table.end()) return 0;
  boost::shared_ptr<GetInfo> collector = (this->*(row->second))(cimClass);
  const int result = cimClass->IsAssociation(TCIMOptions())
                         ? collector->buildCIMAssociation(outputNamespace)
                         : collector->getCIMInstances();
  collector.reset();
  return result;
}

int SystemInformation::collectClass(boost::shared_ptr<ICIMClass> cimClass) {
  const std::string className = cimClass->GetName(TCIMOptions());
  try {
    return runCollector(className, cimClass);
  } catch (const std::exception& e) {
    logger->logDebug(std::string(constants::kExceptionCaught) + constants::kCollectingDataForClass +
                     " " + className + " " + e.what());
  } catch (...) {
  }
  return 0;
}

}  // namespace installedapps_col
