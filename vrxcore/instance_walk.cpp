#include "vrxcore/instance_walk.h"

#include <map>

#include "vrxcore/json_exporter.h"
#include "vrxcore/mof_exporter.h"
#include "vrxcore/table_exporter.h"
#include "vrxcore/xml_exporter.h"

namespace NZARVEK20 {

TExporter FindExporter(const std::string& format) {
  static const std::map<std::string, TExporter> exporters = {
      {"json", ExportJson}, {"xml", ExportCimXml}, {"mof", ExportMof}, {"table", ExportTable}};
  const auto found = exporters.find(format);
  return found == exporters.end() ? nullptr : found->second;
}

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
