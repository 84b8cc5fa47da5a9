#include "vrxcore/mof_exporter.h"

#include <cstdio>
#include <ostream>

#include "vrxcore/utf8_text.h"

namespace NZARVEK20 {
namespace {

void appendEscaped(std::string& out, char32_t character) {
  switch (character) {
    case '"':
      out += "\\\"";
      return;
    case '\'':
      out += "\\'";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\t':
      out += "\\t";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\r':
      out += "\\r";
      return;
    case 0:
      appendUtf8(out, kReplacementCharacter);
      return;
  }
  if (isControlCharacter(character)) {
    char escape[12];  // room for any 32-bit number, though controls take 4 digits
    std::snprintf(escape, sizeof escape, "\\x%04X", static_cast<unsigned>(character));
    out += escape;
  } else {
    appendUtf8(out, character);
  }
}

std::string quoted(const std::string& utf8, char quote) {
  // Most text has nothing to escape and needs no decoding.
  if (isPlainAscii(utf8, "\"'\\")) return quote + utf8 + quote;
  std::string out(1, quote);
  for (const char32_t character : decodeUtf8(utf8)) appendEscaped(out, character);
  return out + quote;
}

std::string literal(const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (value.IsNull()) return "NULL";
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_STRING:
    case CIM_DATETIME:
    case CIM_REFERENCE:
      return quoted(ScalarText(value, toUtf8), '"');
    case CIM_CHAR16:
      return quoted(ScalarText(value, toUtf8), '\'');
    default:
      return ScalarText(value, toUtf8);
  }
}

std::string initializer(const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (!value.IsArray()) return literal(value, toUtf8);
  std::string text = "{";
  for (const TCIMValue& element : value.GetElements())
    text += (text.size() > 1 ? ", " : "") + literal(element, toUtf8);
  return text + "}";
}

std::string instanceDeclaration(ICIMInstance& instance, const TTextEncoder& toUtf8) {
  const auto cimClass = instance.GetClass({});
  std::string text = "instance of " + cimClass->GetName({}) + "\n{\n";
  for (const auto& property : PropertiesOf(instance)) {
    const std::string& name = property->GetName({});
    const TCIMValue& value = property->GetValue({});
    // A null is written only where leaving it out would give the default.
    if (!value.IsNull() || !cimClass->GetProperty(name, {})->GetDefaultValue({}).IsNull())
      text += "    " + name + " = " + initializer(value, toUtf8) + ";\n";
  }
  return text + "};\n";
}

}  // namespace

void ExportMof(std::ostream& out, const std::string& namespaceName, const std::string& generator,
               const TInstances& instances, const TTextEncoder& toUtf8) {
  std::string firstLine = generator.substr(0, generator.find('\n'));
  out << "// generator: " << firstLine << "\n";
  out << "#pragma namespace(" << quoted(namespaceName, '"') << ")\n";
  for (const auto& instance : instances) out << "\n" << instanceDeclaration(*instance, toUtf8);
}

}  // namespace NZARVEK20
