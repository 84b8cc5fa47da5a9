#include "vrxcore/json_exporter.h"

#include <ostream>

#include "vrxcore/json_text.h"

namespace NZARVEK20 {
namespace {

void appendScalar(std::string& out, const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (value.IsNull()) {
    out += "null";
    return;
  }
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_BOOLEAN:
      out += value.GetBoolean() ? "true" : "false";
      return;
    case CIM_UINT8:
    case CIM_UINT16:
    case CIM_UINT32:
    case CIM_UINT64:
      out += std::to_string(value.GetUnsigned());
      return;
    case CIM_SINT8:
    case CIM_SINT16:
    case CIM_SINT32:
    case CIM_SINT64:
      out += std::to_string(value.GetSigned());
      return;
    case CIM_REAL32:
    case CIM_REAL64:
      AppendJsonReal(out, value.GetReal());
      return;
    case CIM_DATETIME:
      AppendJsonString(out, value.GetDateTime().ToString());
      return;
    default:
      AppendJsonString(out, ScalarText(value, toUtf8));
  }
}

// An array as an indented dump lays it out: one element a line, "[]" when empty.
void appendValue(std::string& out, const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (!value.IsArray()) return appendScalar(out, value, toUtf8);
  if (value.GetElements().empty()) {
    out += "[]";
    return;
  }
  bool first = true;
  for (const TCIMValue& element : value.GetElements()) {
    out += first ? "[\n          " : ",\n          ";
    appendScalar(out, element, toUtf8);
    first = false;
  }
  out += "\n        ]";
}

void appendProperties(std::string& out, ICIMInstance& instance, const TTextEncoder& toUtf8) {
  bool empty = true;
  for (const auto& property : PropertiesOf(instance)) {
    const TCIMValue& value = property->GetValue({});
    if (value.IsNull()) continue;
    out += empty ? "{\n        " : ",\n        ";
    AppendJsonString(out, toUtf8(property->GetName({})));
    out += ": ";
    appendValue(out, value, toUtf8);
    empty = false;
  }
  out += empty ? "{}" : "\n      }";
}

void appendInstance(std::string& out, ICIMInstance& instance, const TTextEncoder& toUtf8) {
  out += "    {\n      \"class\": ";
  AppendJsonString(out, instance.GetClass({})->GetName({}));
  out += ",\n      \"path\": ";
  AppendJsonString(out, toUtf8(instance.GetReference({}).ToString()));
  out += ",\n      \"properties\": ";
  appendProperties(out, instance, toUtf8);
  out += "\n    }";
}

}  // namespace

void ExportJson(std::ostream& out, const std::string& namespaceName, const std::string& generator,
                const TInstances& instances, const TTextEncoder& toUtf8) {
  std::string text = "{\n  \"namespace\": ";
  AppendJsonString(text, namespaceName);
  text += ",\n  \"generator\": ";
  AppendJsonString(text, generator);
  text += ",\n  \"instances\": [";
  const char* separator = "\n";
  for (const auto& instance : instances) {
    text += separator;
    appendInstance(text, *instance, toUtf8);
    separator = ",\n";
    out << text;
    text.clear();
  }
  out << text << (instances.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

}  // namespace NZARVEK20
