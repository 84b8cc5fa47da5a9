#include "vrxcore/xml_exporter.h"

#include <algorithm>
#include <initializer_list>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

#include "vrxcore/utf8_text.h"

namespace NZARVEK20 {
namespace {

bool xmlCanCarry(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return character != 0xFFFE && character != 0xFFFF;
}

// Text for element content and attribute values alike; white space other
// than the plain space goes as a character reference, so that attribute
// normalisation and line-end handling give back what was written.
void appendEscaped(std::string& out, std::string_view utf8) {
  // Most text is printable ASCII without markup and needs no decoding.
  if (isPlainAscii(utf8, "&<>\"")) {
    out += utf8;
    return;
  }
  for (const char32_t character : decodeUtf8(std::string(utf8))) {
    switch (character) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\t':
        out += "&#9;";
        break;
      case '\n':
        out += "&#10;";
        break;
      case '\r':
        out += "&#13;";
        break;
      default:
        appendUtf8(out, xmlCanCarry(character) ? character : kReplacementCharacter);
    }
  }
}

// Values are only read while the element is written.
using TAttributes = std::initializer_list<std::pair<const char*, std::string_view>>;

// Writes an indented element tree, one element per line, to a stream when
// told to.
class TXmlWriter {
 public:
  explicit TXmlWriter(std::ostream& stream) : stream_(stream) {}
  void Open(const char* name, TAttributes attributes = {}) {
    StartTag(name, attributes);
    out_ += ">\n";
    open_.push_back(name);
  }
  void Close() {
    const char* name = open_.back();
    open_.pop_back();
    Indent();
    EndTag(name);
  }
  void Empty(const char* name, TAttributes attributes = {}) {
    StartTag(name, attributes);
    out_ += "/>\n";
  }
  void Text(const char* name, const std::string& utf8, TAttributes attributes = {}) {
    StartTag(name, attributes);
    out_ += '>';
    appendEscaped(out_, utf8);
    EndTag(name);
  }
  void Flush() {
    stream_ << out_;
    out_.clear();
  }
  // A comment line; a "--", which a comment cannot hold, is split.
  void Comment(std::string text) {
    for (std::size_t at; (at = text.find("--")) != std::string::npos;) text.insert(at + 1, " ");
    Indent();
    out_ += "<!-- " + text + " -->\n";
  }

 private:
  void Indent() { out_.append(2 * open_.size(), ' '); }
  void StartTag(const char* name, TAttributes attributes) {
    Indent();
    out_ += '<';
    out_ += name;
    for (const auto& attribute : attributes) {
      out_ += ' ';
      out_ += attribute.first;
      out_ += "=\"";
      appendEscaped(out_, attribute.second);
      out_ += '"';
    }
  }
  void EndTag(const char* name) {
    out_ += "</";
    out_ += name;
    out_ += ">\n";
  }

  std::ostream& stream_;
  std::string out_ = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
  std::vector<const char*> open_;
};

const char* keyValueType(ECIMType type) {
  switch (type) {
    case CIM_BOOLEAN:
      return "boolean";
    case CIM_STRING:
    case CIM_CHAR16:
    case CIM_DATETIME:
      return "string";
    default:
      return "numeric";
  }
}

class TCimXmlWriter {
 public:
  TCimXmlWriter(std::ostream& out, const TTextEncoder& toUtf8) : toUtf8_(toUtf8), xml_(out) {}

  void Document(const std::string& namespaceName, const std::string& generator,
                const TInstances& instances) {
    xml_.Comment("generator: " + generator);
    xml_.Open("CIM", {{"CIMVERSION", "2.0"}, {"DTDVERSION", "2.4"}});
    xml_.Open("DECLARATION");
    xml_.Open("DECLGROUP.WITHNAME");
    NamespacePath(namespaceName);
    for (const auto& instance : instances) {
      NamedInstance(*instance);
      xml_.Flush();
    }
    xml_.Close();
    xml_.Close();
    xml_.Close();
    xml_.Flush();
  }

 private:
  void NamespacePath(const std::string& namespaceName) {
    xml_.Open("LOCALNAMESPACEPATH");
    for (size_t start = 0; start <= namespaceName.size();) {
      const size_t slash = std::min(namespaceName.find('/', start), namespaceName.size());
      xml_.Empty("NAMESPACE", {{"NAME", namespaceName.substr(start, slash - start)}});
      start = slash + 1;
    }
    xml_.Close();
  }

  void NamedInstance(ICIMInstance& instance) {
    xml_.Open("VALUE.NAMEDOBJECT");
    InstanceName(instance.GetReference({}));
    const std::string& className = instance.GetClass({})->GetName({});
    xml_.Open("INSTANCE", {{"CLASSNAME", className}});
    for (const auto& property : PropertiesOf(instance)) Property(*instance.GetClass({}), *property);
    xml_.Close();
    xml_.Close();
  }

  void InstanceName(const TCIMReference& path) {
    xml_.Open("INSTANCENAME", {{"CLASSNAME", path.GetInstanceClassName()}});
    for (const auto& key : path.GetKeyBindings()) {
      xml_.Open("KEYBINDING", {{"NAME", key.first}});
      const ECIMType type = key.second.GetType();
      if (type == CIM_REFERENCE) {
        Reference(key.second.GetReference());
      } else {
        xml_.Text("KEYVALUE", ScalarText(key.second, toUtf8_),
                  {{"VALUETYPE", keyValueType(type)}, {"TYPE", key.second.GetType().ToString()}});
      }
      xml_.Close();
    }
    xml_.Close();
  }

  void Reference(const TCIMReference& path) {
    xml_.Open("VALUE.REFERENCE");
    InstanceName(path);
    xml_.Close();
  }

  void Property(ICIMClass& cimClass, ICIMProperty& property) {
    const std::string& name = property.GetName({});
    const TCIMValue& value = property.GetValue({});
    const std::string type = property.GetType({}).ToString();
    if (static_cast<ECIMType>(property.GetType({})) == CIM_REFERENCE) {
      const auto decl = cimClass.GetProperty(name, {});
      xml_.Open("PROPERTY.REFERENCE",
                {{"NAME", name}, {"REFERENCECLASS", decl->GetReferenceClassName({})}});
      if (!value.IsNull()) Reference(value.GetReference());
    } else if (property.IsArray({})) {
      xml_.Open("PROPERTY.ARRAY", {{"NAME", name}, {"TYPE", type}});
      if (!value.IsNull()) Array(value);
    } else {
      xml_.Open("PROPERTY", {{"NAME", name}, {"TYPE", type}});
      if (!value.IsNull()) xml_.Text("VALUE", ScalarText(value, toUtf8_));
    }
    xml_.Close();
  }

  void Array(const TCIMValue& value) {
    xml_.Open("VALUE.ARRAY");
    for (const TCIMValue& element : value.GetElements()) {
      if (element.IsNull())
        xml_.Empty("VALUE.NULL");
      else
        xml_.Text("VALUE", ScalarText(element, toUtf8_));
    }
    xml_.Close();
  }

  const TTextEncoder& toUtf8_;
  TXmlWriter xml_;
};

}  // namespace

void ExportCimXml(std::ostream& out, const std::string& namespaceName, const std::string& generator,
                  const TInstances& instances, const TTextEncoder& toUtf8) {
  TCimXmlWriter(out, toUtf8).Document(namespaceName, generator, instances);
}

}  // namespace NZARVEK20
