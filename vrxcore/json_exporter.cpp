#include "vrxcore/json_exporter.h"

#include <nlohmann/json.hpp>

namespace NZARVEK20 {
namespace {

using Json = nlohmann::ordered_json;

Json scalar(const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (value.IsNull()) return nullptr;
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_BOOLEAN:
      return value.GetBoolean();
    case CIM_UINT8:
    case CIM_UINT16:
    case CIM_UINT32:
    case CIM_UINT64:
      return value.GetUnsigned();
    case CIM_SINT8:
    case CIM_SINT16:
    case CIM_SINT32:
    case CIM_SINT64:
      return value.GetSigned();
    case CIM_REAL32:
    case CIM_REAL64:
      return value.GetReal();
    case CIM_DATETIME:
      return value.GetDateTime().ToString();
    default:
      return ScalarText(value, toUtf8);
  }
}

Json valueJson(const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (!value.IsArray()) return scalar(value, toUtf8);
  Json array = Json::array();
  for (const TCIMValue& element : value.GetElements()) array.push_back(scalar(element, toUtf8));
  return array;
}

Json instanceJson(ICIMInstance& instance, const TTextEncoder& toUtf8) {
  Json properties = Json::object();
  for (const auto& property : PropertiesOf(instance)) {
    const TCIMValue& value = property->GetValue({});
    if (!value.IsNull()) properties[toUtf8(property->GetName({}))] = valueJson(value, toUtf8);
  }
  Json json = Json::object();
  json["class"] = instance.GetClass({})->GetName({});
  json["path"] = toUtf8(instance.GetReference({}).ToString());
  json["properties"] = std::move(properties);
  return json;
}

}  // namespace

std::string ExportJson(const std::string& namespaceName, const TInstances& instances,
                       const TTextEncoder& toUtf8) {
  Json document = Json::object();
  document["namespace"] = namespaceName;
  document["instances"] = Json::array();
  for (const auto& instance : instances)
    document["instances"].push_back(instanceJson(*instance, toUtf8));
  // Text that is still not UTF-8 after conversion must not make the whole
  // document unreadable: such bytes become U+FFFD.
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace NZARVEK20
