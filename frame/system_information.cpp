#include "frame/system_information.h"

#include <exception>
#include <vector>

#include "frame/constants.h"
#include "frame/platform.h"

namespace installedapps_col {

using namespace NZARVEK20;

SystemInformation::SystemInformation(boost::shared_ptr<ICIMNamespace> outputNamespace)
    : logger(LogMessage::getInstance()), outputNamespace(std::move(outputNamespace)) {}

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
