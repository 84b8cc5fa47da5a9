#include "vrxcore/xml_exporter.h"

#include <gtest/gtest.h>

#include "tests/cim_xml_check.h"
#include "tests/vrxcore/export_test_instances.h"
#include "tests/vrxcore/exported_text.h"

namespace NZARVEK20 {
namespace {

std::string exported() {
  auto ns = makeExportNamespace();
  return exportedText(ExportCimXml, "root/test", ns->GetInstances(), latin1Encoder);
}

// The text between the n-th (0-based) opening of `tag` and its closing.
std::string element(const std::string& xml, const std::string& tag, size_t n = 0) {
  size_t start = 0;
  for (size_t i = 0; i <= n; ++i) start = xml.find("<" + tag + " ", i ? start + 1 : 0);
  if (start == std::string::npos) return "";
  return xml.substr(start, xml.find("</" + tag + ">", start) - start);
}

TEST(CimXmlExporter, WritesPathsTypedPropertiesAndReferencesInOrder) {
  const std::string xml = exported();
  EXPECT_EQ(xml.rfind("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                      "<!-- generator: vrx tests 1.0 -->\n"
                      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\">\n"
                      "  <DECLARATION>\n"
                      "    <DECLGROUP.WITHNAME>\n"
                      "      <LOCALNAMESPACEPATH>\n"
                      "        <NAMESPACE NAME=\"root\"/>\n"
                      "        <NAMESPACE NAME=\"test\"/>\n"
                      "      </LOCALNAMESPACEPATH>\n",
                      0),
            0u)
      << xml;
  // Commit order.
  const size_t system = xml.find("<INSTANCE CLASSNAME=\"T_System\">");
  const size_t setting = xml.find("<INSTANCE CLASSNAME=\"T_SystemSetting\">");
  const size_t link = xml.find("<INSTANCE CLASSNAME=\"T_SystemSettings\">");
  EXPECT_LT(system, setting);
  EXPECT_LT(setting, link);
  EXPECT_NE(link, std::string::npos);

  const std::string name = element(xml, "INSTANCENAME");
  EXPECT_NE(name.find("<KEYBINDING NAME=\"Name\">\n"
                      "            <KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">"
                      "WKS&lt;&amp;&gt;</KEYVALUE>"),
            std::string::npos)
      << name;
  EXPECT_NE(name.find("<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint32\">4000000000</KEYVALUE>"),
            std::string::npos);
  EXPECT_NE(xml.find("<PROPERTY NAME=\"Flag\" TYPE=\"boolean\">\n"
                     "            <VALUE>false</VALUE>"),
            std::string::npos);

  const std::string settingInstance = element(xml, "INSTANCE", 1);
  // Unset: present, without a value.
  EXPECT_NE(settingInstance.find("<PROPERTY NAME=\"SettingValue\" TYPE=\"string\">\n"
                                 "          </PROPERTY>"),
            std::string::npos)
      << settingInstance;
  EXPECT_NE(settingInstance.find("<PROPERTY.ARRAY NAME=\"Tags\" TYPE=\"string\">\n"
                                 "            <VALUE.ARRAY>\n"
                                 "              <VALUE>a</VALUE>\n"
                                 "              <VALUE>b,c</VALUE>\n"),
            std::string::npos);
  EXPECT_NE(settingInstance.find("<VALUE>00000003020100.000000:000</VALUE>"), std::string::npos);

  // A reference key nests the referenced instance's name.
  const std::string linkName = element(xml, "INSTANCENAME", 2);
  EXPECT_NE(linkName.find("<KEYBINDING NAME=\"Element\">\n"
                          "            <VALUE.REFERENCE>\n"
                          "              <INSTANCENAME CLASSNAME=\"T_System\">"),
            std::string::npos)
      << linkName;
  EXPECT_NE(xml.find("<PROPERTY.REFERENCE NAME=\"Setting\" REFERENCECLASS=\"T_Setting\">"),
            std::string::npos);
}

TEST(CimXmlExporter, TextLeavesAsUtf8WithoutWhatXmlCannotCarry) {
  const std::string xml = exported();
  // Code page text converted; quotes, tab and line feed as references;
  // the C0 control and NUL replaced.
  const std::string expected =
      ">caf\xC3\xA9 &quot;q&quot; a\\b&#9;tab&#10;line\xEF\xBF\xBD|\xEF\xBF\xBD|<";
  EXPECT_NE(xml.find("<VALUE" + expected + "/VALUE>"), std::string::npos) << xml;
  EXPECT_NE(xml.find("<KEYVALUE VALUETYPE=\"string\" TYPE=\"string\"" + expected + "/KEYVALUE>"),
            std::string::npos);
  EXPECT_EQ(xml.find('\0'), std::string::npos);
  EXPECT_EQ(xml.find('\x01'), std::string::npos);

  auto ns = makeTestNamespace();
  auto setting = ns->GetClass("T_UserSetting", {})->AllocateInstance({});
  setting->SetPropertyValue("SettingID", TCIMValue("bad \xFF\xFE end \xEF\xBF\xBE"), {});
  setting->Commit({});
  EXPECT_NE(exportedText(ExportCimXml, "root/test", ns->GetInstances(), sameText)
                .find(">bad \xEF\xBF\xBD\xEF\xBF\xBD end \xEF\xBF\xBD</KEYVALUE>"),
            std::string::npos);
}

TEST(CimXmlExporter, ValidatesAgainstTheDmtfDtd) {
  if (!cimDtdPresent()) GTEST_SKIP() << "no DTD at " << VRX_CIM_DTD;
  EXPECT_EQ(cimXmlErrors(exported()), "");
  EXPECT_EQ(cimXmlErrors(exportedText(ExportCimXml, "root/test", {}, sameText)), "");
  // The check itself catches an invalid document.
  EXPECT_NE(cimXmlErrors("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\"><DECLARATION/></CIM>"), "");
}

}  // namespace
}  // namespace NZARVEK20
