#include "vrxcore/json_exporter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

#include "tests/vrxcore/export_test_instances.h"
#include "tests/vrxcore/exported_text.h"
#include "vrxcore/json_text.h"

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
  const auto json =
      nlohmann::json::parse(exportedText(ExportJson, "root/test", ns->GetInstances(), latin1));
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
  const std::string text = exportedText(ExportJson, "root/test", ns->GetInstances(),
                                        [](const std::string& s) { return s; });
  const auto json = nlohmann::json::parse(text);
  EXPECT_EQ(json["instances"][0]["properties"]["SettingID"], std::string("a\xEF\xBF\xBD\0b", 6));
}

using Json = nlohmann::ordered_json;

std::string dumped(const Json& json, int indent = -1) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

// Bytes that nlohmann's dump handles each in its own way: escapes, controls, DEL, sequences cut
// short by the end or by a plain byte, overlong forms, surrogates, beyond U+10FFFF.
const std::vector<std::string> kTrickyTexts = {"plain",
                                               "q\"b\\s/",
                                               std::string("\0\x01\b\t\n\x0B\f\r\x1F\x7F", 10),
                                               "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80",
                                               "\xE1\x80"
                                               "A",
                                               "\xE0\x80\xAF",
                                               "\xC0\xAF\xC2",
                                               "\xED\xA0\x80\xED\x9F\xBF",
                                               "\xF4\x90\x80\x80\xF4\x8F\xBF\xBF",
                                               "\xF0\x8F\xBF",
                                               "\xFF\xFE\x80z",
                                               "end\xF0\x9F\x98",
                                               "\xE2\x82\xE2\x82\xAC"};

TEST(JsonText, StringsAreEscapedAndRepairedAsNlohmannDumpsThem) {
  for (const std::string& text : kTrickyTexts) {
    std::string out;
    AppendJsonString(out, text);
    EXPECT_EQ(out, dumped(text)) << text;
  }
  for (const double real : {0.1, 100.0, -0.0, 1e300, 1e-7, 123456789012345678.0,
                            0.30000000000000004, std::nan(""), HUGE_VAL}) {
    std::string out;
    AppendJsonReal(out, real);
    EXPECT_EQ(out, dumped(real)) << real;
  }
}

// The document as the exporter used to build it: nlohmann values dumped whole.
Json valueJson(const TCIMValue& value) {
  if (value.IsArray()) {
    Json array = Json::array();
    for (const TCIMValue& element : value.GetElements()) array.push_back(valueJson(element));
    return array;
  }
  if (value.IsNull()) return nullptr;
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_BOOLEAN:
      return value.GetBoolean();
    case CIM_UINT64:
      return value.GetUnsigned();
    case CIM_SINT16:
      return value.GetSigned();
    case CIM_REAL32:
    case CIM_REAL64:
      return value.GetReal();
    default:
      return static_cast<std::string>(value);
  }
}

std::string documentByDump(const std::string& namespaceName, const TInstances& instances) {
  Json json = {
      {"namespace", namespaceName}, {"generator", kTestGenerator}, {"instances", Json::array()}};
  for (const auto& instance : instances) {
    Json properties = Json::object();
    instance->EnumerateProperties(
        [&](boost::shared_ptr<ICIMProperty> property) {
          if (!property->GetValue({}).IsNull())
            properties[property->GetName({})] = valueJson(property->GetValue({}));
          return true;
        },
        {});
    json["instances"].push_back({{"class", instance->GetClass({})->GetName({})},
                                 {"path", instance->GetReference({}).ToString()},
                                 {"properties", properties}});
  }
  return dumped(json, 2) + "\n";
}

TEST(JsonExporter, WritesWhatDumpingTheWholeDocumentGives) {
  EXPECT_EQ(exportedText(ExportJson, "root/\xFF", {}, sameText), documentByDump("root/\xFF", {}));
  auto ns = TRepositoryNamespace::Create("root/test");
  LoadMof(*ns, mof::parseMof(std::string(kTestQualifiers) + R"(
class T_Values {
  [Key] string Id;
  real64 Wide; real32 Narrow; sint16 Small; uint64 Big; boolean Yes; char16 Letter;
  datetime When; string Names[]; real64 Reals[]; T_Values REF Other;
};)",
                             "values.mof"));
  auto cimClass = ns->GetClass("T_Values", {});
  auto empty = cimClass->AllocateInstance({});
  empty->SetPropertyValue("Id", TCIMValue(""), {});
  empty->SetPropertyValue("Names", TCIMValue(CIM_STRING, 0, {}), {});
  empty->Commit({});
  for (size_t i = 0; i < kTrickyTexts.size(); ++i) {
    auto instance = cimClass->AllocateInstance({});
    instance->SetPropertyValue("Id", TCIMValue(kTrickyTexts[i]), {});
    instance->SetPropertyValue("Wide", TCIMValue(0.1 * static_cast<double>(i) - 0.5), {});
    instance->SetPropertyValue("Narrow", TCIMValue(CIM_REAL32, "3.4028234e38", nullptr), {});
    instance->SetPropertyValue("Small", TCIMValue(static_cast<short>(-7 * static_cast<int>(i))),
                               {});
    instance->SetPropertyValue("Big", TCIMValue(~0ull - i), {});
    instance->SetPropertyValue("Yes", TCIMValue(i % 2 == 0), {});
    instance->SetPropertyValue("Letter", TCIMValue(CIM_CHAR16, "\"", nullptr), {});
    instance->SetPropertyValue("When", TCIMValue(TCIMDateTime(2026, 11, 23, 10, 5, 9, 7, -60)), {});
    instance->SetPropertyValue(
        "Names", TCIMValue(CIM_STRING, 3, {TCIMValue(kTrickyTexts[i]), TCIMValue(), TCIMValue("")}),
        {});
    instance->SetPropertyValue("Reals", TCIMValue(CIM_REAL64, 2, {TCIMValue(1e21), TCIMValue(1.5)}),
                               {});
    instance->SetPropertyValue("Other", TCIMValue(empty->GetReference({})), {});
    instance->Commit({});
  }
  EXPECT_EQ(exportedText(ExportJson, "root/test", ns->GetInstances(), sameText),
            documentByDump("root/test", ns->GetInstances()));
}

}  // namespace
}  // namespace NZARVEK20
