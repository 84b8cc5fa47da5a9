// vrxhost --export-registry: the machine's registry from a key down as a regedit file, of a
// described machine and of a volume, and the errors that leave an existing output as it was. A
// Wine prefix: tests/wine/registry_export.sh.
#include "tests/vrxhost/volume_twin.h"

namespace {

// ASCII text as the UTF-16LE bytes of an exported file.
std::string utf16(const std::string& ascii) {
  std::string bytes;
  for (char c : ascii) bytes += {c, '\0'};
  return bytes;
}

const std::string kHeader = "\xFF\xFE" + utf16("Windows Registry Editor Version 5.00\r\n\r\n");

TEST_F(Vrxhost, ExportsAKeyOfTheSampleMachineToStdoutOrAFile) {
  const std::string key =
      " --export-registry 'hklm\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion'";
  const Result out = run(key);
  ASSERT_EQ(out.status, 0) << out.err;
  EXPECT_EQ(out.err, "");
  EXPECT_EQ(
      out.out.rfind(kHeader + utf16("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows "
                                    "NT\\CurrentVersion]\r\n\"SystemRoot\"=\"C:\\\\Windows\"\r\n"),
                    0),
      0u);
  EXPECT_NE(out.out.find(utf16("\"InstallTime\"=hex(b):99,2c,be,b2,b7,10,da,01\r\n")),
            std::string::npos);
  EXPECT_EQ(out.out.substr(out.out.size() - 8), utf16("\r\n\r\n"));

  const Result file = run(key + " --output " + (dir / "out.reg").string());
  ASSERT_EQ(file.status, 0) << file.err;
  EXPECT_EQ(file.out, "");
  EXPECT_EQ(readFile(dir / "out.reg"), out.out);
}

TEST_F(Vrxhost, AVolumeExportsAsItsDescribedTwin) {
  makeVolumeTwin(dir / "volume");
  const std::string software = " --export-registry HKLM\\\\SOFTWARE";
  const Result described = run("--machine " + registryFixesMachine().string() + software);
  const Result volume = run("--machine " + (dir / "volume").string() + software);
  ASSERT_EQ(volume.status, 0) << volume.err;
  EXPECT_NE(volume.out.find(utf16("KB958644")), std::string::npos);
  EXPECT_EQ(volume.out, described.out);
}

TEST_F(Vrxhost, ADirtyHiveReadWithItsLogsExportsAsWindowsRecoveredIt) {
  const fs::path dirty = fs::path(VRX_SOURCE_DIR) / "../shared/data/hives/dirty";
  if (!fs::exists(dirty)) GTEST_SKIP() << dirty << " is absent";
  // A described machine whose hives/SOFTWARE is `hive` with its logs beside it, named as the
  // hive; the export of HKLM\SOFTWARE.
  auto softwareOf = [&](const fs::path& machine, const fs::path& hive,
                        const std::vector<std::string>& logs) {
    writeFile(machine / "machine.json", "{}");
    fs::create_directories(machine / "hives");
    fs::copy_file(hive, machine / "hives/SOFTWARE");
    for (const std::string& log : logs)
      fs::copy_file(hive.string() + log, machine / ("hives/SOFTWARE" + log));
    const Result result = run("--export-registry 'HKLM\\SOFTWARE' --machine " + machine.string());
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
  };
  struct Twin {
    const char* folder;
    const char* hive;
    std::vector<std::string> logs;
    const char* recovered;
  };
  const Twin twins[] = {
      {"NewDirtyHive1", "NewDirtyHive", {".LOG1", ".LOG2"}, "RecoveredHive_Windows10"},
      {"OldDirtyHive", "OldDirtyHive", {".LOG1"}, "RecoveredHive_Windows7"},
  };
  for (const Twin& twin : twins) {
    const fs::path folder = dirty / twin.folder;
    const std::string replayed = softwareOf(dir / twin.hive, folder / twin.hive, twin.logs);
    const std::string recovered = softwareOf(dir / twin.recovered, folder / twin.recovered, {});
    EXPECT_GT(replayed.size(), kHeader.size());
    EXPECT_TRUE(replayed == recovered) << twin.folder;
    EXPECT_NE(softwareOf(dir / (std::string(twin.hive) + "-alone"), folder / twin.hive, {}),
              recovered)
        << twin.folder;
  }
}

TEST_F(Vrxhost, ExportErrorsExitWithOneLineAndTouchNoOutput) {
  writeFile(dir / "out.reg", "previous");
  const std::string output = " --output " + (dir / "out.reg").string();
  for (const std::string& arguments :
       {std::string("--export-registry 'HKXX\\SOFTWARE'"),
        std::string("--export-registry 'HKLM\\\\SOFTWARE'"), std::string("--export-registry ''"),
        std::string("--export-registry HKLM --format xml"),
        std::string("--export-registry HKLM QELTO_TimeZone"),
        std::string("--export-registry HKLM --user bob")}) {
    const Result result = run(arguments + output);
    EXPECT_EQ(result.status, 2) << arguments << ": " << result.err;
    EXPECT_NE(result.err, "") << arguments;
  }
  EXPECT_EQ(run("--export-registry 'HKLM\\\\SOFTWARE'" + output).err,
            "vrxhost: \"HKLM\\\\SOFTWARE\" is no registry key: a name between backslashes is "
            "empty\n");
  const Result missing = run("--export-registry 'hklm\\SOFTWARE\\Nope'" + output);
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err,
            "vrxhost: HKEY_LOCAL_MACHINE\\SOFTWARE\\Nope: no such key in the machine's registry\n");
  EXPECT_EQ(run("--machine " + (dir / "none").string() + " --export-registry HKLM" + output).status,
            1);
  EXPECT_EQ(readFile(dir / "out.reg"), "previous");
  EXPECT_FALSE(fs::exists(dir / "out.reg.tmp"));
}

}  // namespace
