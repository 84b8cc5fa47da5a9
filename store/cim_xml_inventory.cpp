#include "store/cim_xml_inventory.h"

#include <libxml/parser.h>

#include <memory>

#include "host/cim_value.h"
#include "host/status.h"
#include "store/snapshot.h"

namespace vrxstore {
namespace {

using nlohmann::json;
using NZARVEK20::TCIMReference;
using NZARVEK20::TCIMValue;

struct DocumentFree {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

bool named(const xmlNode* node, const char* name) {
  return node->type == XML_ELEMENT_NODE && xmlStrcmp(node->name, BAD_CAST name) == 0;
}

std::string attribute(const xmlNode* node, const char* name) {
  xmlChar* value = xmlGetProp(node, BAD_CAST name);
  const std::string text = value ? reinterpret_cast<const char*>(value) : "";
  xmlFree(value);
  return text;
}

std::string content(const xmlNode* node) {
  xmlChar* value = xmlNodeGetContent(node);
  const std::string text = value ? reinterpret_cast<const char*>(value) : "";
  xmlFree(value);
  return text;
}

const xmlNode* child(const xmlNode* node, const char* name) {
  for (const xmlNode* c = node->children; c; c = c->next)
    if (named(c, name)) return c;
  return nullptr;
}

InventoryError errorAt(const xmlNode* node, const std::string& what) {
  return InventoryError("at line " + std::to_string(xmlGetLineNo(node)) + ": " + what);
}

// The value `text` of CIM type `type`, checked as strictly as the repository checks it.
TCIMValue typed(const xmlNode* node, const std::string& type, const std::string& text) {
  try {
    return TCIMValue(TCIMValue::TCIMType(type), text, nullptr);
  } catch (const NZARVEK20::TVRXException&) {
    throw errorAt(node, "\"" + text + "\" is not a " + (type.empty() ? "typed" : type) + " value");
  }
}

json jsonOf(const TCIMValue& value) {
  const NZARVEK20::ECIMType type = value.GetType();
  if (type == NZARVEK20::CIM_BOOLEAN) return value.GetBoolean();
  if (type == NZARVEK20::CIM_REAL32 || type == NZARVEK20::CIM_REAL64) return value.GetReal();
  if (type == NZARVEK20::CIM_DATETIME) return value.GetDateTime().ToString();
  if (value.GetType().IsInteger()) {
    const bool isSigned = type == NZARVEK20::CIM_SINT8 || type == NZARVEK20::CIM_SINT16 ||
                          type == NZARVEK20::CIM_SINT32 || type == NZARVEK20::CIM_SINT64;
    return isSigned ? json(value.GetSigned()) : json(value.GetUnsigned());
  }
  return value.GetString();
}

TCIMReference referenceOf(const xmlNode* instanceName);

// A key's value: a KEYVALUE of its TYPE, or a VALUE.REFERENCE.
TCIMValue keyValue(const xmlNode* binding) {
  if (const xmlNode* reference = child(binding, "VALUE.REFERENCE")) {
    const xmlNode* name = child(reference, "INSTANCENAME");
    if (!name) throw errorAt(reference, "VALUE.REFERENCE without INSTANCENAME");
    return TCIMValue(referenceOf(name));
  }
  const xmlNode* key = child(binding, "KEYVALUE");
  if (!key) throw errorAt(binding, "KEYBINDING without a value");
  std::string type = attribute(key, "TYPE");
  if (type.empty()) type = attribute(key, "VALUETYPE") == "boolean" ? "boolean" : "string";
  return typed(key, type, content(key));
}

TCIMReference referenceOf(const xmlNode* instanceName) {
  TCIMReference::TKeyBindings keys;
  for (const xmlNode* c = instanceName->children; c; c = c->next)
    if (named(c, "KEYBINDING")) keys.emplace_back(attribute(c, "NAME"), keyValue(c));
  return TCIMReference(attribute(instanceName, "CLASSNAME"), std::move(keys));
}

json propertyValue(const xmlNode* property) {
  const std::string type = attribute(property, "TYPE");
  if (named(property, "PROPERTY.REFERENCE")) {
    const xmlNode* reference = child(property, "VALUE.REFERENCE");
    const xmlNode* name = reference ? child(reference, "INSTANCENAME") : nullptr;
    return name ? json(referenceOf(name).ToString()) : json();
  }
  if (named(property, "PROPERTY.ARRAY")) {
    const xmlNode* array = child(property, "VALUE.ARRAY");
    if (!array) return json();
    json elements = json::array();
    for (const xmlNode* c = array->children; c; c = c->next)
      if (named(c, "VALUE")) elements.push_back(jsonOf(typed(c, type, content(c))));
    return elements;
  }
  const xmlNode* value = child(property, "VALUE");
  return value ? jsonOf(typed(value, type, content(value))) : json();
}

json instanceOf(const xmlNode* namedObject) {
  const xmlNode* name = child(namedObject, "INSTANCENAME");
  const xmlNode* instance = child(namedObject, "INSTANCE");
  if (!name || !instance)
    throw errorAt(namedObject, "VALUE.NAMEDOBJECT without INSTANCENAME and INSTANCE");
  json properties = json::object();
  for (const xmlNode* c = instance->children; c; c = c->next) {
    if (!named(c, "PROPERTY") && !named(c, "PROPERTY.ARRAY") && !named(c, "PROPERTY.REFERENCE"))
      continue;
    json value = propertyValue(c);
    if (!value.is_null()) properties[attribute(c, "NAME")] = std::move(value);
  }
  try {
    return {{"class", attribute(instance, "CLASSNAME")},
            {"path", referenceOf(name).ToString()},
            {"properties", std::move(properties)}};
  } catch (const NZARVEK20::TVRXException&) {
    throw errorAt(name, "not an instance name");
  }
}

// Every VALUE.NAMEDOBJECT under `node`, in document order.
void collect(const xmlNode* node, json& instances) {
  for (const xmlNode* c = node->children; c; c = c->next) {
    if (named(c, "VALUE.NAMEDOBJECT"))
      instances.push_back(instanceOf(c));
    else if (c->type == XML_ELEMENT_NODE)
      collect(c, instances);
  }
}

// What the document says made it: the "generator: …" comment before its CIM element.
std::string generatorOf(const xmlDoc& document) {
  const std::string prefix = "generator: ";
  for (const xmlNode* node = document.children; node; node = node->next) {
    if (node->type != XML_COMMENT_NODE || !node->content) continue;
    std::string text = reinterpret_cast<const char*>(node->content);
    const std::size_t start = text.find_first_not_of(' ');
    const std::size_t end = text.find_last_not_of(' ');
    if (start == std::string::npos) continue;
    text = text.substr(start, end - start + 1);
    if (text.rfind(prefix, 0) == 0) return text.substr(prefix.size());
  }
  return "";
}

}  // namespace

json inventoryOfCimXml(const std::string& text) {
  // No network, no entities from outside: the file is data, nothing more.
  std::unique_ptr<xmlDoc, DocumentFree> document(
      xmlReadMemory(text.data(), int(text.size()), "inventory.xml", nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  if (!document) {
    const xmlError* error = xmlGetLastError();
    if (!error) throw InventoryError("not XML");
    std::string message = error->message ? error->message : "not XML";
    while (!message.empty() && message.back() == '\n') message.pop_back();
    throw InventoryError("at line " + std::to_string(error->line) + ", column " +
                         std::to_string(error->int2) + ": " + message);
  }
  const xmlNode* root = xmlDocGetRootElement(document.get());
  if (!root || !named(root, "CIM")) throw InventoryError("at line 1: not a CIM document");
  json instances = json::array();
  collect(root, instances);
  json inventory = {{"namespace", "root/qelto"}, {"instances", std::move(instances)}};
  if (const std::string generator = generatorOf(*document); !generator.empty())
    inventory["generator"] = generator;
  return inventory;
}

}  // namespace vrxstore
