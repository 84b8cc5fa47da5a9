#include "vrxcore/exporters.h"

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

}  // namespace NZARVEK20
