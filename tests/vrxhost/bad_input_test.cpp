// Bad input on the command line: a run that cannot be done stops with exit status 1 and one line
// naming the file and place, and never touches an output file that is already there; bad files
// that a collector reads (INF, PE) cost only what they hold, and the log says which.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "tests/vrxhost/vrxhost_fixture.h"

namespace {

class BadInput : public Vrxhost {
 protected:
  // A copy of a built or example machine under the scratch directory.
  fs::path copyMachine(const fs::path& from, const std::string& name) {
    const fs::path to = dir / name;
    fs::copy(from, to, fs::copy_options::recursive);
    return to;
  }
  fs::path copyRegistryFixes(const std::string& name) {
    return copyMachine(fs::path(VRX_SOURCE_DIR) / "examples/machines/registry-fixes", name);
  }

  // Exit 1, one line on stderr holding `names`, nothing on stdout, out.json as it was.
  void expectStopped(const std::string& arguments, const std::string& names) {
    writeFile(dir / "out.json", "previous");
    const Result result = run(arguments + " --output " + (dir / "out.json").string());
    EXPECT_EQ(result.status, 1) << arguments << ": " << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(names), std::string::npos) << arguments << ": " << result.err;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(readFile(dir / "out.json"), "previous") << arguments;
  }
};

TEST_F(BadInput, MalformedMachineFilesStopTheRunNamingFileAndPlace) {
  const fs::path badReg = copyRegistryFixes("bad_reg");
  writeFile(badReg / "registry/20-bad.reg",
            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\r\n"
            "\"a\"=dword:zz\r\n");
  expectStopped("--machine " + badReg.string(),
                (badReg / "registry/20-bad.reg").string() + ":4:11: ");

  const fs::path badHeader = copyRegistryFixes("bad_header");
  writeFile(badHeader / "registry/20-odd.reg", std::string("\xff\xfeW\x00", 4));
  expectStopped("--machine " + badHeader.string(),
                (badHeader / "registry/20-odd.reg").string() + ":1: ");

  const fs::path badType = copyRegistryFixes("bad_type");
  writeFile(badType / "machine.json", "{\"computerName\": 5}\n");
  expectStopped("--machine " + badType.string(),
                (badType / "machine.json").string() + ": member computerName");

  // A file given as the machine is taken for a disk image.
  expectStopped("--machine " + (badReg / "registry/20-bad.reg").string(),
                "20-bad.reg: holds neither a partition table nor a file system");

  const fs::path winePrefix =
      copyMachine(fs::path(VRX_SOURCE_DIR) / "tests/winapi/wine_reg", "prefix");
  fs::create_directories(winePrefix / "drive_c");
  std::string system = readFile(winePrefix / "system.reg");
  const auto lines = std::count(system.begin(), system.end(), '\n');
  writeFile(winePrefix / "system.reg",
            system + "\n[Software\\\\Broken] 1700000000\n\"a\"=dword:zz\n");
  expectStopped("--machine " + winePrefix.string(),
                (winePrefix / "system.reg").string() + ":" + std::to_string(lines + 3) + ": ");
}

TEST_F(BadInput, UnreadableRegistryFolderStopsTheRunInsteadOfLookingEmpty) {
  // Root reads any folder whatever its mode, but not one that is a symbolic link to itself.
  const fs::path looped = copyRegistryFixes("looped");
  fs::remove_all(looped / "registry");
  fs::create_directory_symlink("registry", looped / "registry");
  expectStopped("--machine " + looped.string(), (looped / "registry").string() + ": cannot read");
}

TEST_F(BadInput, MachineFileThatCannotBeFollowedStopsTheRun) {
  const fs::path looped = copyRegistryFixes("looped-json");
  fs::remove(looped / "machine.json");
  fs::create_symlink("machine.json", looped / "machine.json");
  expectStopped("--machine " + looped.string(),
                (looped / "machine.json").string() + ": not a regular file");
}

TEST_F(BadInput, RegistryFolderWithoutPermissionsStopsTheRun) {
  if (::geteuid() == 0) GTEST_SKIP() << "a folder without permissions is readable by root";
  const fs::path closed = copyRegistryFixes("closed");
  ::chmod((closed / "registry").c_str(), 0);
  expectStopped("--machine " + closed.string(), (closed / "registry").string() + ": cannot read");
  ::chmod((closed / "registry").c_str(), 0755);
}

TEST_F(BadInput, OutputThatCannotBeWrittenStopsTheRunAndKeepsWhatIsThere) {
  const std::string machine = " --machine " + std::string(VRX_BUILT_MACHINES) + "/sample";
  fs::create_directories(dir / "taken");
  writeFile(dir / "taken/keep", "kept");
  Result result = run(machine + " --output " + (dir / "taken").string());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "vrxhost: " + (dir / "taken").string() + ": cannot write the output: Is a directory\n");
  EXPECT_EQ(readFile(dir / "taken/keep"), "kept");
  // No one, root included, creates files in /proc.
  result = run(machine + " --output /proc/vrxhost_out.json");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("/proc/vrxhost_out.json: cannot write the output"), std::string::npos)
      << result.err;
}

TEST_F(BadInput, BrokenInfAndPeFilesCostOnlyWhatTheyHoldAndAreLogged) {
  const fs::path built = fs::path(VRX_BUILT_MACHINES) / "sample";
  const fs::path badPe = copyMachine(built, "bad_pe");
  writeFile(badPe / "drive_c/Windows/system32/Setup/ocgen.dll", std::string("MZ\x90\0garbage", 11));
  const fs::path badInf = copyMachine(built, "bad_inf");
  writeFile(badInf / "drive_c/Windows/inf/sysoc.inf", "[Version\nSignature=\"$Windows NT$\"\n");
  const std::vector<std::pair<fs::path, std::string>> cases = {{badPe, "ocgen.dll"},
                                                               {badInf, "Sysoc.inf"}};
  for (const auto& c : cases) {
    const Result result =
        run("--machine " + c.first.string() + " --log " + (dir / "log").string() + " --output " +
            (dir / "out.json").string() + " QELTO_OSComponent QELTO_Account");
    EXPECT_EQ(result.status, 0) << c.second << ": " << result.err;
    const nlohmann::json output = nlohmann::json::parse(readFile(dir / "out.json"));
    EXPECT_EQ(output["instances"].back()["class"], "QELTO_Account") << c.second;
    EXPECT_NE(readFile(dir / "log").find(c.second), std::string::npos) << c.second;
  }
}

}  // namespace
