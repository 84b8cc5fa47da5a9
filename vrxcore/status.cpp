#include "host/status.h"

#include <map>

namespace NZARVEK20 {

const std::string& TVRXStatusCode::TranslateStatusCode() const {
  static const std::map<EVRXStatusCode, std::string> texts = {
      {VRX_OK, "Success"},
      {VRX_FAILED, "The operation failed"},
      {VRX_INVALID_PARAMETER, "Invalid parameter"},
      {VRX_INVALID_CLASS, "No such class in the namespace"},
      {VRX_NO_CLASS, "No class was given to the collector"},
      {VRX_NOT_FOUND, "No instance with that object path"},
      {VRX_NOT_SUPPORTED, "The operation is not supported"},
      {VRX_ALREADY_EXISTS, "An instance with that object path already exists"},
      {VRX_KEY_MISSING, "A key property of the instance has no value"},
      {VRX_TYPE_MISMATCH, "The value does not convert to the property's type"},
      {VRX_NO_SUCH_PROPERTY, "The class has no such property"},
      {VRX_ABSTRACT_CLASS, "An abstract class cannot have instances"},
      {VRX_ALREADY_COMMITTED, "The instance is already committed"},
      {VRX_INVALID_DATETIME, "Invalid date-time"},
  };
  static const std::string unknown = "Unknown status code";
  auto found = texts.find(code_);
  return found == texts.end() ? unknown : found->second;
}

const char* TVRXException::what() const noexcept { return status_.TranslateStatusCode().c_str(); }

}  // namespace NZARVEK20
