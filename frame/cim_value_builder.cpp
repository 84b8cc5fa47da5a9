#include "frame/cim_value_builder.h"

#include "frame/date_time_parser.h"
#include "frame/frame_texts.h"
#include "frame/log_message.h"

namespace installedapps_col {

using namespace NZARVEK20;

std::vector<std::string> splitString(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  const std::string terminated = text + separator;
  size_t start = 0;
  for (size_t at = terminated.find(separator); at != std::string::npos;
       at = terminated.find(separator, start)) {
    if (at > start) pieces.push_back(terminated.substr(start, at - start));
    start = at + 1;
  }
  return pieces;
}

CIMValueBuilder::CIMValueBuilder(boost::shared_ptr<ICIMClass> cimClass)
    : cimClass(std::move(cimClass)) {}

PropertyMap CIMValueBuilder::buildProperties(FactMap facts) {
  PropertyMap properties;
  for (const auto& fact : facts) {
    TCIMValue value = buildValue(fact.first, fact.second);
    if (!value.IsNull()) properties[fact.first] = value;
  }
  return properties;
}

TCIMValue CIMValueBuilder::buildValue(std::string name, std::string text) {
  TCIMValue result;
  if (!cimClass) return result;
  try {
    boost::shared_ptr<ICIMPropertyDecl> decl = cimClass->GetProperty(name, TCIMOptions());
    if (!decl) return result;
    const TCIMType type = decl->GetType(TCIMOptions());
    if (decl->IsArray(TCIMOptions())) {
      const std::vector<std::string> pieces = splitString(text, ',');
      const TCIMType elementType(type.ToString());
      std::vector<TCIMValue> elements;
      for (const std::string& piece : pieces)
        elements.push_back(TCIMValue(elementType, piece, cimClass->GetNamespace(TCIMOptions())));
      result.Set(type, static_cast<unsigned int>(pieces.size()), elements);
    } else if (static_cast<ECIMType>(type) == CIM_DATETIME) {
      const TCIMDateTime dateTime = DateTimeParser(LogMessage::getInstance()).parseDateTime(text);
      if (dateTime.IsNull()) return TCIMValue();
      result = TCIMValue(dateTime);
    } else {
      result = TCIMValue(decl->GetType(TCIMOptions()), text, cimClass->GetNamespace(TCIMOptions()));
    }
  } catch (const TVRXException& e) {
    LogMessage* logger = LogMessage::getInstance();
    logger->logDebug(std::string(constants::kErrorProcessingProperty) +
                     constants::kErrorProcessingProperty + " " + cimClass->GetName(TCIMOptions()) +
                     ". " + name + "= " + text);
    logger->logError(e.what());
  }
  return result;
}

TCIMValue CIMValueBuilder::buildStringArrayValue(std::string text) {
  return TCIMValue(TCIMType(CIM_STRING), 1, {TCIMValue(text)});
}

}  // namespace installedapps_col
