#include "vrxcore/json_exporter.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/vrxcore/test_schema.h"

namespace NZARVEK20 {
namespace {

TEST(JsonExporter, WritesInstancesInCommitOrderWithTypedValues) {
  auto ns = makeTestNamespace();
  auto system = ns->GetClass("T_System", {})->AllocateInstance({});
  system->SetPropertyValue("CreationClassName", TCIMValue("T_System"), {});
  system->SetPropertyValue("Name", TCIMValue("caf\xE9"), {});
  system->SetPropertyValue("Number", TCIMValue(4000000000u), {});
  system->SetPropertyValue("Flag", TCIMValue(false), {});
  system->Commit({});
  auto setting = ns->GetClass("T_SystemSetting", {})->AllocateInstance({});
  setting->SetPropertyValue("SettingID", TCIMValue("Path"), {});
  setting->SetPropertyValue("SettingValue", TCIMValue(), {});
  setting->SetPropertyValue("Tags", TCIMValue(CIM_STRING, 2, {TCIMValue("a"), TCIMValue("\x01")}),
                            {});
  setting->SetPropertyValue("Changed", TCIMValue(TCIMDateTime(3, 2, 1, 0, 0)), {});
  setting->Commit({});

  // Stands in for the machine's code page: 0xE9 is e-acute in 1252.
  const TTextEncoder latin1 = [](const std::string& text) {
    std::string out;
    for (unsigned char c : text) out += c == 0xE9 ? std::string("\xC3\xA9") : std::string(1, c);
    return out;
  };
  const auto json = nlohmann::json::parse(ExportJson("root/test", ns->GetInstances(), latin1));
  EXPECT_EQ(json["namespace"], "root/test");
  ASSERT_EQ(json["instances"].size(), 2u);
  const auto& first = json["instances"][0];
  EXPECT_EQ(first["class"], "T_System");
  EXPECT_EQ(first["path"],
            "T_System.CreationClassName=\"T_System\",Name=\"caf\xC3\xA9\",Number=4000000000");
  EXPECT_EQ(first["properties"]["Name"], "caf\xC3\xA9");
  EXPECT_EQ(first["properties"]["Number"], 4000000000u);
  EXPECT_EQ(first["properties"]["Flag"], false);
  const auto& second = json["instances"][1]["properties"];
  EXPECT_FALSE(second.contains("SettingValue"));
  EXPECT_FALSE(second.contains("Weight"));
  EXPECT_EQ(second["Tags"], (nlohmann::json{"a", "\x01"}));
  EXPECT_EQ(second["Changed"], "00000003020100.000000:000");
}

TEST(JsonExporter, BytesThatAreNotUtf8NeverBreakTheDocument) {
  auto ns = makeTestNamespace();
  auto setting = ns->GetClass("T_UserSetting", {})->AllocateInstance({});
  setting->SetPropertyValue("SettingID", TCIMValue(std::string("a\xFF\0b", 4)), {});
  setting->Commit({});
  const std::string text =
      ExportJson("root/test", ns->GetInstances(), [](const std::string& s) { return s; });
  const auto json = nlohmann::json::parse(text);
  EXPECT_EQ(json["instances"][0]["properties"]["SettingID"], std::string("a\xEF\xBF\xBD\0b", 6));
}

}  // namespace
}  // namespace NZARVEK20
