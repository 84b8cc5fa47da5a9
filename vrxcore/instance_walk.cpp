#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

std::vector<boost::shared_ptr<ICIMProperty>> PropertiesOf(ICIMInstance& instance) {
  std::vector<boost::shared_ptr<ICIMProperty>> properties;
  instance.EnumerateProperties(TAddToVectorCallback<ICIMProperty>(properties), {});
  return properties;
}

std::vector<std::string> KeyNamesOf(ICIMClass& cimClass) {
  std::vector<std::string> names;
  cimClass.EnumerateKeyNames(
      [&](const std::string& name) {
        names.push_back(name);
        return true;
      },
      {});
  return names;
}

std::string ScalarText(const TCIMValue& value, const TTextEncoder& toUtf8) {
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_STRING:
    case CIM_CHAR16:
    case CIM_REFERENCE:
      return toUtf8(static_cast<std::string>(value));
    default:
      return static_cast<std::string>(value);
  }
}

}  // namespace NZARVEK20
