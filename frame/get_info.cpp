#include "frame/get_info.h"

#include <utility>
#include <vector>

#include "frame/cim_value_builder.h"
#include "frame/frame_texts.h"

namespace installedapps_col {

using namespace NZARVEK20;

GetInfo::GetInfo(boost::shared_ptr<ICIMClass> cimClass)
    : logger(LogMessage::getInstance()), cimClass(std::move(cimClass)) {}

GetInfo::~GetInfo() {}

int GetInfo::getCIMInstances() { return 0; }

int GetInfo::buildCIMAssociation(boost::shared_ptr<ICIMNamespace>) { return 0; }

boost::shared_ptr<ICIMClass> GetInfo::getCIMClass() {
  if (!cimClass) throw TVRXException(TVRXStatusCode(VRX_NO_CLASS));
  return cimClass;
}

boost::shared_ptr<ICIMInstance> GetInfo::buildCIMInstance(PropertyMap values) {
  if (!cimClass) throw TVRXException(TVRXStatusCode(VRX_NO_CLASS));
  boost::shared_ptr<ICIMInstance> instance = cimClass->AllocateInstance(TCIMOptions());
  fixUpInstance(instance, values);
  for (const auto& entry : values) {
    instance->GetProperty(entry.first, TCIMOptions());
    if (!entry.second.IsNull())
      instance->SetPropertyValue(entry.first, entry.second, TCIMOptions());
  }
  instance->Commit(TCIMOptions());
  return instance;
}

PropertyMap GetInfo::getCIMProperties(FactMap facts) {
  return CIMValueBuilder(getCIMClass()).buildProperties(facts);
}

int GetInfo::buildInstancesFromRecords(FactList records, const PropertyMap& keys,
                                       const std::string& prefix) {
  int count = 0;
  // Each record is given up as it is built, so that the facts and the instances made of them are
  // not all held at once.
  for (FactMap& record : records) {
    try {
      PropertyMap values = getCIMProperties(std::move(record));
      values.insert(keys.begin(), keys.end());
      buildCIMInstance(std::move(values));
      ++count;
    } catch (const TVRXException& e) {
      logger->logDebug(prefix + constants::kErrorGeneratingInstances + " " +
                       std::to_string(e.GetStatusCode()));
    }
  }
  return count;
}

void GetInfo::fixUpInstance(boost::shared_ptr<ICIMInstance> instance, PropertyMap values) {
  std::vector<const std::string*> keyNames;
  getCIMClass()->EnumerateKeyNames(TAddKeyNamesToVectorCallback(keyNames), TCIMOptions());
  for (const std::string* name : keyNames) {
    if (values.count(*name)) continue;
    const ECIMType type = instance->GetProperty(*name, TCIMOptions())->GetType(TCIMOptions());
    if (type != CIM_STRING) continue;
    logger->logDebug(std::string(constants::kFixingUpInstance) +
                     getCIMClass()->GetName(TCIMOptions()) + constants::kWithProperty + *name);
    instance->SetPropertyValue(*name, TCIMValue(""), TCIMOptions());
  }
}

}  // namespace installedapps_col
