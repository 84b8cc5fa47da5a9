// Instances of the test schema that carry every kind of value the
// exporters must write: keys of each type, an array, a date-time, an unset
// property with a default, references, and text that is not plain.
#pragma once

#include "tests/vrxcore/test_schema.h"

namespace NZARVEK20 {

// 0xE9 is e-acute in the machine's code page (1252) for latin1Encoder.
inline const char kAwkwardBytes[] = "caf\xE9 \"q\" a\\b\ttab\nline\x01|\0|";
inline const std::string kAwkwardText(kAwkwardBytes, sizeof kAwkwardBytes - 1);

inline boost::shared_ptr<TRepositoryNamespace> makeExportNamespace() {
  auto ns = makeTestNamespace();
  auto system = ns->GetClass("T_System", {})->AllocateInstance({});
  system->SetPropertyValue("CreationClassName", TCIMValue("T_System"), {});
  system->SetPropertyValue("Name", TCIMValue("WKS<&>"), {});
  system->SetPropertyValue("Number", TCIMValue(4000000000u), {});
  system->SetPropertyValue("Flag", TCIMValue(false), {});
  system->Commit({});
  auto setting = ns->GetClass("T_SystemSetting", {})->AllocateInstance({});
  setting->SetPropertyValue("SettingID", TCIMValue(kAwkwardText), {});
  setting->SetPropertyValue("SettingValue", TCIMValue(), {});
  setting->SetPropertyValue("Tags", TCIMValue(CIM_STRING, 2, {TCIMValue("a"), TCIMValue("b,c")}),
                            {});
  setting->SetPropertyValue("Changed", TCIMValue(TCIMDateTime(3, 2, 1, 0, 0)), {});
  setting->SetPropertyValue("Weight", TCIMValue(static_cast<unsigned short>(7)), {});
  setting->Commit({});
  auto link = ns->GetClass("T_SystemSettings", {})->AllocateInstance({});
  link->SetPropertyValue("Element", TCIMValue(system->GetReference({})), {});
  link->SetPropertyValue("Setting", TCIMValue(setting->GetReference({})), {});
  link->Commit({});
  return ns;
}

// Stands in for the machine's code page conversion.
inline std::string latin1Encoder(const std::string& text) {
  std::string out;
  for (unsigned char c : text) out += c == 0xE9 ? std::string("\xC3\xA9") : std::string(1, c);
  return out;
}

inline std::string sameText(const std::string& text) { return text; }

}  // namespace NZARVEK20
