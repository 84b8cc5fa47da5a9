#include "vrxcore/mof_exporter.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/vrxcore/export_test_instances.h"
#include "tests/vrxcore/exported_text.h"
#include "vrxcore/json_exporter.h"

namespace NZARVEK20 {
namespace {

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

TEST(MofExporter, WritesEscapedLiteralsArraysAndNullsThatOverrideDefaults) {
  auto ns = makeExportNamespace();
  const std::string mof = exportedText(ExportMof, "root/test", ns->GetInstances(), latin1Encoder);
  EXPECT_EQ(mof.rfind("// generator: vrx tests 1.0\n#pragma namespace(\"root/test\")\n\ninstance "
                      "of T_System\n{\n"
                      "    CreationClassName = \"T_System\";\n"
                      "    Name = \"WKS<&>\";\n"
                      "    Number = 4000000000;\n"
                      "    Flag = false;\n"
                      "};\n",
                      0),
            0u)
      << mof;
  EXPECT_NE(mof.find("    SettingID = \"caf\xC3\xA9 \\\"q\\\" a\\\\b\\ttab\\nline\\x0001|"
                     "\xEF\xBF\xBD|\";\n"
                     "    SettingValue = NULL;\n"
                     "    Weight = 7;\n"
                     "    Changed = \"00000003020100.000000:000\";\n"
                     "    Tags = {\"a\", \"b,c\"};\n"),
            std::string::npos)
      << mof;
  EXPECT_NE(
      mof.find("    Element = \"T_System.CreationClassName=\\\"T_System\\\",Name=\\\"WKS<&>\\\","
               "Number=4000000000\";\n"),
      std::string::npos);
}

TEST(MofExporter, LoadsBackIntoTheSameInstances) {
  auto original = makeExportNamespace();
  const std::string mof =
      exportedText(ExportMof, "root/test", original->GetInstances(), latin1Encoder);
  auto loaded = makeTestNamespace();
  LoadMof(*loaded, mof::parseMof(mof, "out.mof"));
  // The one thing a MOF string cannot hold is NUL.
  const std::string expected =
      replaced(exportedText(ExportJson, "root/test", original->GetInstances(), latin1Encoder),
               "\\u0000", "\xEF\xBF\xBD");
  EXPECT_EQ(exportedText(ExportJson, "root/test", loaded->GetInstances(), sameText), expected);
  EXPECT_TRUE(loaded->GetInstances()[1]->GetProperty("SettingValue", {})->GetValue({}).IsNull());
}

TEST(MofExporter, AFileItWroteComesOutTheSameAfterLoading) {
  // Also a seed of the MOF fuzz target.
  std::ifstream file(VRX_MOF_FIXTURES "/instances.mof", std::ios::binary);
  std::ostringstream fixture;
  fixture << file.rdbuf();
  auto ns = makeTestNamespace();
  LoadMof(*ns, mof::parseMof(fixture.str(), "instances.mof"));
  EXPECT_EQ(exportedText(ExportMof, "root/test", ns->GetInstances(), sameText), fixture.str());
}

}  // namespace
}  // namespace NZARVEK20
