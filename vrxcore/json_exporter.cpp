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

// Text that is still not UTF-8 after conversion must not make the whole document unreadable:
// such bytes become U+FFFD.
std::string dump(const Json& json, int indent = -1) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

// Every line of `text` after `prefix`.
std::string indented(const std::string& text, const std::string& prefix) {
  std::string result = prefix;
  result.reserve(text.size() + text.size() / 8);
  for (char c : text) {
    result += c;
    if (c == '\n') result += prefix;
  }
  return result;
}

}  // namespace

std::string ExportJson(const std::string& namespaceName, const TInstances& instances,
                       const TTextEncoder& toUtf8) {
  // Written one instance at a time, so that a large inventory is never held twice as JSON
  // values; the text is what dumping the whole document with an indent of 2 gives.
  Json head = Json::object();
  head["namespace"] = namespaceName;
  std::string text = "{\n  \"namespace\": " + dump(head["namespace"]) + ",\n  \"instances\": [";
  const char* separator = "\n";
  for (const auto& instance : instances) {
    text += separator;
    text += indented(dump(instanceJson(*instance, toUtf8), 2), "    ");
    separator = ",\n";
  }
  text += instances.empty() ? "]\n}\n" : "\n  ]\n}\n";
  return text;
}

}  // namespace NZARVEK20
