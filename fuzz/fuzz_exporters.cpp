// Feeds arbitrary bytes, as registry text would arrive, through every output
// format: each must stay a valid document of its kind, MOF must read back
// into what it was written from, and JSON strings must come out as
// nlohmann's dump writes them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/vrxcore/exported_text.h"
#include "tests/vrxcore/test_schema.h"
#include "vrxcore/json_exporter.h"
#include "vrxcore/json_text.h"
#include "vrxcore/mof_exporter.h"
#include "vrxcore/table_exporter.h"
#include "vrxcore/utf8_text.h"
#include "vrxcore/xml_exporter.h"

namespace {

using namespace NZARVEK20;

std::string sameText(const std::string& text) { return text; }

void require(bool condition) {
  if (!condition) std::abort();
}

// Every character valid UTF-8 that `allowed` accepts.
template <class Allowed>
void requireText(const std::string& text, Allowed allowed) {
  std::string again;
  for (const char32_t character : decodeUtf8(text)) {
    require(allowed(character));
    appendUtf8(again, character);
  }
  require(again == text);
}

boost::shared_ptr<TRepositoryNamespace> namespaceHolding(const std::string& text) {
  auto ns = makeTestNamespace();
  auto setting = ns->GetClass("T_SystemSetting", {})->AllocateInstance({});
  setting->SetPropertyValue("SettingID", TCIMValue(text), {});
  setting->SetPropertyValue("Tags", TCIMValue(CIM_STRING, 2, {TCIMValue(text), TCIMValue("")}), {});
  setting->Commit({});
  auto user = ns->GetClass("T_UserSetting", {})->AllocateInstance({});
  user->SetPropertyValue("SettingID", TCIMValue("u" + text), {});
  user->SetPropertyValue("SettingValue", TCIMValue(text), {});
  user->Commit({});
  return ns;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto instances = namespaceHolding(text)->GetInstances();

  const std::string mof = exportedText(ExportMof, "root/test", instances, sameText);
  auto loaded = makeTestNamespace();
  LoadMof(*loaded, mof::parseMof(mof, "fuzz.mof"));
  require(exportedText(ExportMof, "root/test", loaded->GetInstances(), sameText) == mof);

  const auto json =
      nlohmann::json::parse(exportedText(ExportJson, "root/test", instances, sameText));
  require(json.is_object());
  std::string jsonString;
  AppendJsonString(jsonString, text);
  require(jsonString ==
          nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  requireText(exportedText(ExportCimXml, "root/test", instances, sameText),
              [](char32_t c) { return (c >= 0x20 || c == '\n') && c != 0xFFFE && c != 0xFFFF; });
  requireText(exportedText(ExportTable, "root/test", instances, sameText),
              [](char32_t c) { return c == '\n' || !isControlCharacter(c); });
  return 0;
}
