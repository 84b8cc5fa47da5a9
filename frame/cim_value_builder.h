// Carries a collector's text facts over into typed CIM values, as the
// schema types each property.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "frame/types.h"
#include "host/cim_interfaces.h"

namespace installedapps_col {

// Cuts `text` at each separator; empty pieces are dropped, nothing is
// trimmed.
std::vector<std::string> splitString(const std::string& text, char separator);

class CIMValueBuilder {
 public:
  explicit CIMValueBuilder(boost::shared_ptr<NZARVEK20::ICIMClass> cimClass);
  virtual ~CIMValueBuilder() {}

  // The facts whose property the class declares and whose text converts.
  PropertyMap buildProperties(FactMap facts);
  // Null when the class lacks the property or the text does not convert.
  NZARVEK20::TCIMValue buildValue(std::string name, std::string text);
  // A string array of one element, `text`.
  NZARVEK20::TCIMValue buildStringArrayValue(std::string text);

 private:
  boost::shared_ptr<NZARVEK20::ICIMClass> cimClass;
};

}  // namespace installedapps_col
