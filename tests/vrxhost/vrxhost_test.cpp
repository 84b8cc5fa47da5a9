// vrxhost as users run it: exit statuses, messages, the output and the log.
#include <nlohmann/json.hpp>

#include "tests/vrxhost/vrxhost_fixture.h"

namespace {

TEST_F(Vrxhost, InventoriesTheSampleMachineWithItsComputerSystemAndLog) {
  const Result result = run("--log " + (dir / "log").string() + " QELTO_InstalledFix");
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  const auto json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["namespace"], "root/qelto");
  ASSERT_GE(json["instances"].size(), 1u);
  EXPECT_EQ(json["instances"][0], nlohmann::json::parse(R"({"class": "QELTO_ComputerSystem",
      "path": "QELTO_ComputerSystem.CreationClassName=\"QELTO_ComputerSystem\",Name=\"WKS-042\"",
      "properties": {"CreationClassName": "QELTO_ComputerSystem", "Name": "WKS-042"}})"));
  const std::string log = readFile(dir / "log");
  EXPECT_EQ(log.find("3\tTInstalledAppsCallbacks::Init -Initializing the plugin.\n"), 0u) << log;
  EXPECT_NE(log.find("\n3\tNormal exit from plugin.\n"), std::string::npos) << log;
  const std::string last = "3\tTInstalledAppsCallbacks::DeInit -De-Initializing the plugin.\n";
  EXPECT_EQ(log.rfind(last), log.size() - last.size()) << log;
}

TEST_F(Vrxhost, LogLevelVerboseLinesAndOutputFile) {
  const Result result = run("-v --log-level 2 --log " + (dir / "log").string() + " --output " +
                            (dir / "out.json").string() + " QELTO_TimeZone QELTO_ComputerSystem");
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(readFile(dir / "log"), "");
  EXPECT_EQ(nlohmann::json::parse(readFile(dir / "out.json"))["instances"].size(), 2u);
  std::istringstream lines(result.err);
  std::string first, second, extra;
  std::getline(lines, first);
  std::getline(lines, second);
  EXPECT_FALSE(std::getline(lines, extra)) << result.err;
  EXPECT_EQ(first.rfind("QELTO_TimeZone\t1\t", 0), 0u) << first;
  // The host's own computer system was committed before the query.
  EXPECT_EQ(second.rfind("QELTO_ComputerSystem\t0\t", 0), 0u) << second;
  EXPECT_FALSE(fs::exists(dir / "out.json.tmp"));
}

TEST_F(Vrxhost, UsageErrorsExitTwoAndTouchNoOutput) {
  writeFile(dir / "out.json", "previous");
  const std::string output = " --output " + (dir / "out.json").string();
  for (const std::string& arguments :
       {std::string("QELTO_Nope"), std::string("--format yaml"), std::string("--log-level 9"),
        std::string("--no-such-option"), std::string("--user bob")}) {
    const Result result = run(arguments + output);
    EXPECT_EQ(result.status, 2) << arguments << ": " << result.err;
    EXPECT_NE(result.err, "") << arguments;
    EXPECT_EQ(readFile(dir / "out.json"), "previous") << arguments;
  }
  EXPECT_EQ(run("QELTO_Account QELTO_Nope" + output).err,
            "vrxhost: unknown class QELTO_Nope (not in the schema)\n");
}

TEST_F(Vrxhost, RunStoppersExitOneWithOneLineNamingTheFile) {
  writeFile(dir / "bad.mof", "class A {\n  string B;\n  uint8 C = ;\n};\n");
  writeFile(dir / "plugin.so", "not a library");
  writeFile(dir / "badjson/machine.json", "{\n  \"computerName\": \"X\",\n  oops\n}\n");
  writeFile(dir / "out.json", "previous");
  const std::string bin = VRX_BIN_DIR;
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"--schema " + (dir / "bad.mof").string(), (dir / "bad.mof").string() + ":3:13: "},
      {"--schema " + (dir / "none.mof").string(), (dir / "none.mof").string()},
      {"--plugin " + (dir / "plugin.so").string(), (dir / "plugin.so").string() + ": cannot load"},
      {"--plugin " + bin + "/libvrxcore.so",
       "libvrxcore.so: the library loaded but registered no plug-in"},
      {"--machine " + (dir / "nothing").string(), (dir / "nothing").string()},
      {"--machine " + dir.string(), "not a machine directory"},
      {"--machine " + (dir / "badjson").string(), "machine.json:3:"},
      {"--output " + (dir / "missing/out.json").string(), (dir / "missing/out.json").string()},
  };
  for (const auto& c : cases) {
    const Result result = run(c.first + " QELTO_Account");
    EXPECT_EQ(result.status, 1) << c.first;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(c.second), std::string::npos) << c.first << ": " << result.err;
    EXPECT_EQ(result.out, "") << c.first;
  }
  EXPECT_EQ(readFile(dir / "out.json"), "previous");
}

}  // namespace
