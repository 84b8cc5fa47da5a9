// Every example machine, in every output format, gives a document that its
// reader accepts, and text that is not plain leaves as valid UTF-8.
#include <map>
#include <nlohmann/json.hpp>

#include "tests/cim_xml_check.h"
#include "tests/vrxcore/exported_text.h"
#include "tests/vrxhost/vrxhost_fixture.h"
#include "vrxcore/json_exporter.h"
#include "vrxcore/mof_loader.h"

namespace {

using namespace NZARVEK20;

class OutputFormats : public Vrxhost {
 protected:
  // The inventory of `machine` in `format`; fails the test on a bad run.
  std::string inventory(const fs::path& machine, const std::string& format) {
    const fs::path output = dir / ("out." + format);
    const Result result = run("--machine " + machine.string() + " --format " + format +
                              " --output " + output.string());
    EXPECT_EQ(result.status, 0) << machine << " " << format << ": " << result.err;
    EXPECT_EQ(result.out, "");
    return readFile(output);
  }

  // The MOF loaded back against the shipped schema, written as JSON by what its header says
  // made it.
  static std::string mofAsJson(const std::string& mof) {
    auto ns = TRepositoryNamespace::Create("root/qelto");
    LoadMofFile(*ns, std::string(VRX_BIN_DIR) + "/qelto.mof");
    LoadMof(*ns, mof::parseMof(mof, "inventory.mof"));
    const std::string header = "// generator: ";
    EXPECT_EQ(mof.rfind(header, 0), 0u) << mof.substr(0, 80);
    const std::string generator = mof.substr(header.size(), mof.find('\n') - header.size());
    std::ostringstream json;
    ExportJson(json, ns->GetName(), generator, ns->GetInstances(),
               [](const std::string& s) { return s; });
    return json.str();
  }

  // "Class: N instance(s)" for each class, in order of first appearance.
  static std::vector<std::string> expectedHeadings(const nlohmann::json& json) {
    std::vector<std::string> classes;
    std::map<std::string, size_t> counts;
    for (const auto& instance : json["instances"]) {
      const std::string name = instance["class"];
      if (counts[name]++ == 0) classes.push_back(name);
    }
    std::vector<std::string> headings;
    for (const auto& name : classes)
      headings.push_back(name + ": " + std::to_string(counts[name]) +
                         (counts[name] == 1 ? " instance" : " instances"));
    return headings;
  }

  static std::vector<std::string> headingsOf(const std::string& table) {
    std::vector<std::string> headings;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);)
      if (!line.empty() && line[0] != ' ') headings.push_back(line);
    return headings;
  }

  // JSON parses, MOF loads back into the same instances, the table has one
  // section per class; XML validates where the DTD is at hand.
  void expectAllFormatsValid(const fs::path& machine) {
    SCOPED_TRACE(machine.string());
    const std::string jsonText = inventory(machine, "json");
    const auto json = nlohmann::json::parse(jsonText);
    ASSERT_GT(json["instances"].size(), 1u);
    // Each document says what made it: this vrxhost, its version and commit.
    const std::string generator = json["generator"];
    EXPECT_EQ(generator.rfind("vrxhost ", 0), 0u) << generator;
    EXPECT_NE(generator.find(" (commit "), std::string::npos) << generator;
    EXPECT_NE(inventory(machine, "xml").find("<!-- generator: " + generator + " -->"),
              std::string::npos);
    if (cimDtdPresent()) {
      EXPECT_EQ(cimXmlErrors(inventory(machine, "xml")), "");
    }
    EXPECT_EQ(mofAsJson(inventory(machine, "mof")), jsonText);
    EXPECT_EQ(headingsOf(inventory(machine, "table")), expectedHeadings(json));
  }
};

std::vector<fs::path> exampleMachines() {
  std::vector<fs::path> machines;
  for (const char* root : {VRX_SOURCE_DIR "/examples/machines", VRX_BUILT_MACHINES})
    for (const auto& entry : fs::directory_iterator(root)) machines.push_back(entry.path());
  return machines;
}

TEST_F(OutputFormats, EveryExampleMachineGivesJsonThatMofAndTableAgreeWith) {
  const auto machines = exampleMachines();
  ASSERT_GE(machines.size(), 3u);
  for (const auto& machine : machines) expectAllFormatsValid(machine);
}

TEST_F(OutputFormats, EveryExampleMachineGivesValidCimXml) {
  if (!cimDtdPresent()) GTEST_SKIP() << "no DTD at " << VRX_CIM_DTD;
  for (const auto& machine : exampleMachines())
    EXPECT_EQ(cimXmlErrors(inventory(machine, "xml")), "") << machine;
}

TEST_F(OutputFormats, CodePageTextAndControlsLeaveAsValidUtf8) {
  fs::copy(VRX_SOURCE_DIR "/examples/machines/registry-fixes", dir / "machine",
           fs::copy_options::recursive);
  // 1252 text, and a REG_SZ holding a control character and a NUL: the
  // collector reads the value as C text, so it ends at the NUL.
  writeFile(dir / "machine/registry/50-odd.reg",
            "Windows Registry Editor Version 5.00\n\n"
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Odd]\n"
            "\"DisplayName\"=hex(1):4f,00,64,00,64,00,01,00,54,00,6f,00,00,00,48,00,69,00,00,00\n"
            "\"DisplayVersion\"=\"1.0\"\n"
            "\"Publisher\"=\"Caf\xC3\xA9 <&> \\\"Soci\xC3\xA9t\xC3\xA9\\\"\"\n");
  const fs::path machine = dir / "machine";
  expectAllFormatsValid(machine);

  const auto json = nlohmann::json::parse(inventory(machine, "json"));
  const auto odd = std::find_if(
      json["instances"].begin(), json["instances"].end(),
      [](const auto& i) { return i["properties"].value("ProductVersion", "") == "1.0"; });
  ASSERT_NE(odd, json["instances"].end());
  EXPECT_EQ((*odd)["properties"]["ProductName"], "Odd\x01To");
  EXPECT_EQ((*odd)["properties"]["ProductVendor"], "Caf\xC3\xA9 <&> \"Soci\xC3\xA9t\xC3\xA9\"");
  EXPECT_NE(inventory(machine, "xml")
                .find("<VALUE>Caf\xC3\xA9 &lt;&amp;&gt; &quot;Soci\xC3\xA9t\xC3\xA9&quot;</VALUE>"),
            std::string::npos);
  EXPECT_NE(inventory(machine, "xml")
                .find("<KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">"
                      "Odd\xEF\xBF\xBDTo</KEYVALUE>"),
            std::string::npos);
  EXPECT_NE(inventory(machine, "mof").find("ProductName = \"Odd\\x0001To\";"), std::string::npos);
  EXPECT_NE(inventory(machine, "table").find("  Odd\xEF\xBF\xBDTo "), std::string::npos);
}

}  // namespace
