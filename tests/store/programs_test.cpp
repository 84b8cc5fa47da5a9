// The programs as users run them: vrxhost --store twice, vrxstore diff and load.
#include <sys/wait.h>

#include "tests/store/engine_fixture.h"

namespace {

using namespace storetest;

struct Result {
  int status;
  std::string out;
  std::string err;
};

class Programs : public EngineTest {
 protected:
  Result run(const std::string& program, const std::string& arguments) {
    const std::string command = "env -u VRX_EXCLUDEAPPS " + program + " " + arguments + " >" +
                                (dir / "stdout").string() + " 2>" + (dir / "stderr").string();
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readText(dir / "stdout"),
            readText(dir / "stderr")};
  }
  Result vrxstore(const std::string& arguments) { return run(VRXSTORE, arguments); }
  Result vrxhost(const std::string& arguments) { return run(VRXHOST, arguments); }
  std::string quotedTarget() const { return "'" + target + "'"; }
};

// The rows of a table printed by vrxstore, without its heading and rule.
std::vector<std::string> tableRows(const std::string& text) {
  std::vector<std::string> rows;
  std::istringstream lines(text);
  std::string line;
  bool body = false;
  while (std::getline(lines, line)) {
    if (body) rows.push_back(line);
    if (line.rfind("----", 0) == 0) body = true;
  }
  return rows;
}

TEST_P(Programs, SecondRunWithOneApplicationMoreShowsInTheDiff) {
  const fs::path sample = fs::path(VRX_BUILT_MACHINES) / "sample";
  const Result first = vrxhost("--machine " + sample.string() + " --store " + quotedTarget());
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, "") << "--store prints nothing without --output";

  const fs::path copy = dir / "WKS-042";
  fs::copy(sample, copy, fs::copy_options::recursive);
  writeText(copy / "registry" / "39-added.reg",
            "Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
            "AddedApp]\r\n\"DisplayName\"=\"Added Application\"\r\n"
            "\"DisplayVersion\"=\"2.5.1\"\r\n\"Publisher\"=\"Fabrikam\"\r\n");
  const Result second = vrxhost("--machine " + copy.string() + " --store " + quotedTarget() +
                                " --output " + (dir / "second.json").string());
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_TRUE(fs::exists(dir / "second.json")) << "--output still writes the file";

  const Result diff = vrxstore("diff " + quotedTarget() + " WKS-042");
  ASSERT_EQ(diff.status, 0) << diff.err;
  const auto rows = tableRows(diff.out);
  ASSERT_EQ(rows.size(), 1u) << diff.out;
  EXPECT_EQ(rows[0], "application  added   Added Application        2.5.1") << diff.out;

  const Result json = vrxstore("diff " + quotedTarget() + " WKS-042 1 2 --format json");
  ASSERT_EQ(json.status, 0) << json.err;
  EXPECT_EQ(nlohmann::json::parse(json.out),
            nlohmann::json::parse(R"({"machine": "WKS-042", "from": "1", "to": "2", "changes": [
              {"what": "application", "change": "added", "name": "Added Application",
               "from": "", "to": "2.5.1"}]})"));

  // The file the second run wrote is the snapshot already stored.
  const Result load = vrxstore("load " + quotedTarget() + " " + (dir / "second.json").string());
  EXPECT_EQ(load.status, 0) << load.err;
  EXPECT_NE(load.out.find("already stored as snapshot 2 of WKS-042"), std::string::npos)
      << load.out;
}

TEST_P(Programs, MalformedFileIsRefusedAndTheOthersLoad) {
  const std::string good = (dir / "good.json").string();
  const Result made =
      vrxhost("--machine " + std::string(VRX_BUILT_MACHINES) + "/sample --output " + good);
  ASSERT_EQ(made.status, 0) << made.err;
  const std::string text = readText(good);
  writeText(dir / "cut.json", text.substr(0, text.size() / 2));

  const Result load =
      vrxstore("load " + quotedTarget() + " " + (dir / "cut.json").string() + " - < " + good);
  EXPECT_EQ(load.status, 1);
  EXPECT_EQ(std::count(load.err.begin(), load.err.end(), '\n'), 1) << load.err;
  EXPECT_EQ(load.err.rfind("vrxstore: " + (dir / "cut.json").string() + ": at line ", 0), 0u)
      << load.err;
  EXPECT_EQ(load.out, "stdin: snapshot 1 of WKS-042\n");

  const Result latest = vrxstore("query " + quotedTarget() + " latest --format json");
  ASSERT_EQ(latest.status, 0) << latest.err;
  EXPECT_EQ(nlohmann::json::parse(latest.out).size(), 1u);

  const Result unknown = vrxstore("query " + quotedTarget() + " nonsense");
  EXPECT_EQ(unknown.status, 2);

  // Asking makes no store where there is none.
  const Result missing = vrxstore("diff " + (dir / "typo.db").string() + " WKS-042");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err,
            "vrxstore: " + (dir / "typo.db").string() + ": unable to open database file\n");
  EXPECT_FALSE(fs::exists(dir / "typo.db"));
}

TEST_P(Programs, CimXmlAndJsonOfOneRunAreOneSnapshot) {
  const std::string machine = std::string(VRX_BUILT_MACHINES) + "/sample";
  const std::string xml = (dir / "run.xml").string(), json = (dir / "run.json").string();
  ASSERT_EQ(vrxhost("--machine " + machine + " --format xml --output " + xml).status, 0);
  ASSERT_EQ(vrxhost("--machine " + machine + " --output " + json).status, 0);
  // Every value read from CIM-XML as from JSON, or the content hashes would differ.
  const Result load = vrxstore("load " + quotedTarget() + " " + xml + " " + json);
  EXPECT_EQ(load.status, 0) << load.err;
  EXPECT_EQ(load.out, xml + ": snapshot 1 of WKS-042\n" + json +
                          ": already stored as snapshot 1 of WKS-042\n");
  // The snapshot says what made the inventory, as the CIM-XML's comment said it.
  const std::string made = nlohmann::json::parse(readText(json))["generator"];
  EXPECT_EQ(made.rfind("vrxhost ", 0), 0u) << made;
  EXPECT_EQ(one(*vrxstore::openDatabase(target), "SELECT tool_version FROM snapshot"), made);

  std::string text = readText(xml);
  const auto at = text.find("<VALUE>true</VALUE>");
  ASSERT_NE(at, std::string::npos);
  const auto line = std::count(text.begin(), text.begin() + at, '\n') + 1;
  text.replace(at, 19, "<VALUE>maybe</VALUE>");
  writeText(dir / "bad.xml", text);
  writeText(dir / "cut.xml", text.substr(0, text.size() / 3));
  const Result bad = vrxstore("load " + quotedTarget() + " " + (dir / "bad.xml").string() + " " +
                              (dir / "cut.xml").string());
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.err.substr(0, bad.err.find('\n')), "vrxstore: " + (dir / "bad.xml").string() +
                                                       ": at line " + std::to_string(line) +
                                                       ": \"maybe\" is not a boolean value");
  EXPECT_NE(bad.err.find("cut.xml: at line "), std::string::npos) << bad.err;
  EXPECT_EQ(one(*vrxstore::openDatabase(target), "SELECT count(*) FROM snapshot"), "1");
}

TEST_P(Programs, ProgressShowsOnATerminalOnly) {
  const std::string json = (dir / "run.json").string();
  ASSERT_EQ(vrxhost("--output " + json).status, 0);
  const std::string files = " " + json + " " + json;
  // Piped: the results on stdout, nothing on stderr.
  const Result piped = vrxstore("load " + quotedTarget() + files);
  EXPECT_EQ(piped.status, 0) << piped.err;
  EXPECT_EQ(piped.err, "");
  // On a terminal (script(1) gives it one): the count of files and snapshots after each file.
  if (std::system("command -v script >/dev/null") != 0) GTEST_SKIP() << "no script(1)";
  const Result terminal = run("script", "-qec \"" + std::string(VRXSTORE) + " load " +
                                            quotedTarget() + files + "\" /dev/null");
  EXPECT_EQ(terminal.status, 0) << terminal.err;
  EXPECT_NE(terminal.out.find("2/2 files, 0 snapshots written"), std::string::npos) << terminal.out;
}

STORE_ENGINES(Programs);

TEST(ProgramsWithoutServer, RefusedConnectionIsOneLine) {
  const std::string command =
      std::string(VRXSTORE) + " query postgresql://nobody@127.0.0.1:1/none latest 2>&1";
  FILE* pipe = ::popen(command.c_str(), "r");
  std::string out;
  char buffer[256];
  while (std::fgets(buffer, sizeof buffer, pipe)) out += buffer;
  const int status = ::pclose(pipe);
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
  EXPECT_EQ(out.rfind("vrxstore: PostgreSQL: ", 0), 0u) << out;
}

}  // namespace
