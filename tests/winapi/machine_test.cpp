#include "winapi/machine/machine.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>

#include "test_machine.h"

using nlohmann::json;
using winapi::Machine;
using winapi::MachineError;

namespace {

std::string loadError(const std::string& dir) {
  try {
    Machine::load(dir);
  } catch (const MachineError& error) {
    return error.what();
  }
  return "loaded";
}

std::string descriptionError(const json& description) {
  try {
    Machine::fromDescription(description);
  } catch (const MachineError& error) {
    return error.what();
  }
  return "loaded";
}

TEST(Machine, RecognisesDescribedMachinesByAnyOfTheirParts) {
  for (const char* part : {"drive_c", "registry"}) {
    TempDirectory dir;
    dir.makeDirectory(std::string("wks-") + part + "/" + part);
    auto machine = Machine::load(dir.path() + "/wks-" + part + "/");
    EXPECT_EQ(machine->computerName(),
              std::string("WKS-") + (part[0] == 'd' ? "DRIVE_C" : "REGISTRY"));
    EXPECT_EQ(machine->ansiCodePage(), 1252u);
  }
  TempDirectory dir;
  dir.write("machine.json", R"({"computerName": "WKS-042", "ansiCodePage": 1251})");
  auto machine = Machine::load(dir.path());
  EXPECT_EQ(machine->computerName(), "WKS-042");
  EXPECT_EQ(machine->ansiCodePage(), 1251u);
  EXPECT_EQ(machine->description()["computerName"], "WKS-042");
}

TEST(Machine, RefusesWhatIsNotAMachineDirectory) {
  TempDirectory dir;
  EXPECT_EQ(loadError(dir.path() + "/absent"), dir.path() + "/absent: no such directory");
  dir.write("file", "x");
  // A file is read as a disk image.
  EXPECT_EQ(loadError(dir.path() + "/file"),
            dir.path() +
                "/file: holds neither a partition table nor a file system; it is not a disk "
                "image or a volume");
  dir.makeDirectory("empty/drive_d");
  EXPECT_EQ(loadError(dir.path() + "/empty"),
            dir.path() +
                "/empty: not a machine directory (no machine.json, registry/, drive_c/, system.reg "
                "with user.reg, or Windows/System32/config/SOFTWARE)");
  dir.makeDirectory("odd/machine.json");
  EXPECT_EQ(loadError(dir.path() + "/odd"), dir.path() + "/odd/machine.json: not a regular file");
}

TEST(Machine, SyntaxErrorsNameFileLineAndColumn) {
  const std::pair<const char*, const char*> cases[] = {
      {"{\n  \"computerName\": x\n}",
       ":2:19: syntax error while parsing value - invalid literal; last read: '\"computerName\": "
       "x'"},
      {"{\"a\": [1, 2,]}",
       ":1:13: syntax error while parsing value - unexpected ']'; expected '[', '{', or a literal"},
      {"{\n  \"a\": \"abc",
       ":2:12: syntax error while parsing value - invalid string: missing closing quote; last "
       "read: '\"abc'"},
      {"{\"a\": 1}\n,",
       ":2:1: syntax error while parsing value - unexpected ','; expected end of input"},
      {"",
       ":1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
       "literal"},
      {"{\"bias\": 12e522}", ":1:15: number overflow parsing '12e522'"},
  };
  for (const auto& [text, expected] : cases) {
    TempDirectory dir;
    dir.write("machine.json", text);
    EXPECT_EQ(loadError(dir.path()), dir.path() + "/machine.json" + expected) << text;
  }
}

TEST(Machine, MembersOfTheWrongTypeAreNamedByTheirPath) {
  TempDirectory dir;
  dir.write("machine.json", R"({"version": {"major": "6", "minor": 1}})");
  EXPECT_EQ(loadError(dir.path()),
            dir.path() + "/machine.json: member version.major: expected an integer");

  const std::pair<const char*, const char*> cases[] = {
      {"[]", "machine.json: top level: expected an object"},
      {R"({"environment": {"PATH": 5}})",
       "machine.json: member environment.PATH: expected a string"},
      {R"({"pageFiles": [{}, {"totalSize": -1}]})",
       "machine.json: member pageFiles[1].totalSize: expected an integer from 0 to "
       "18446744073709551615"},
      {R"({"timeZone": {"daylightDate": {"month": 13}}})",
       "machine.json: member timeZone.daylightDate.month: expected an integer from 0 to 12"},
      {R"({"timeZone": {"bias": 1.5}})", "machine.json: member timeZone.bias: expected an integer"},
      {R"({"system": {"wow64": 0}})", "machine.json: member system.wow64: expected true or false"},
      {R"({"now": "2026-11-22 10:15:30"})",
       "machine.json: member now: expected a UTC time like \"2026-11-22T10:15:30Z\" (from year "
       "1601)"},
      {R"({"now": "2026-02-29T10:15:30Z"})",
       "machine.json: member now: expected a UTC time like \"2026-11-22T10:15:30Z\" (from year "
       "1601)"},
      {R"({"ansiCodePage": 0})",
       "machine.json: member ansiCodePage: expected an integer from 1 to 65535"},
      {R"({"ansiCodePage": 4242})",
       "machine.json: member ansiCodePage: code page 4242 is not known to iconv"},
      {R"({"missing": ["psapi.dll", "psapi.dll!"]})",
       "machine.json: member missing[1]: expected \"dll\" or \"dll!Function\""},
      {R"({"fail": {"NetUserEnum": "5"}})",
       "machine.json: member fail.NetUserEnum: expected a number, a \"0x…\" string or {\"return\": "
       "…, \"lastError\": …}"},
      {R"({"fail": {"GetComputerNameA": {"return": 0, "lastError": -5}}})",
       "machine.json: member fail.GetComputerNameA.lastError: expected an integer from 0 to "
       "4294967295"},
      {R"({"wmi": {"Win32_QuickFixEngineering": [{"InstalledOn": {"date": 2009}}]}})",
       "machine.json: member wmi.Win32_QuickFixEngineering[0].InstalledOn.date: expected a string"},
      {R"({"timeZone": {"daylightDate": {"month": 3, "day": 6}, "standardDate": {"month": 10, "day": 1}}})",
       "machine.json: member timeZone.daylightDate.day: expected the week of the month, 1 to 5 (5 "
       "= last), when year is 0"},
      {R"({"timeZone": {"daylightDate": {"month": 3, "day": 2}}})",
       "machine.json: member timeZone.standardDate: a daylight rule needs the date standard time "
       "returns"},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(descriptionError(json::parse(text)), expected) << text;
  // Members this version does not describe are left for newer readers.
  EXPECT_EQ(descriptionError(
                json::parse(R"({"futureMember": {"x": [1]}, "version": {"futureField": "x"}})")),
            "loaded");
}

TEST(Machine, DefaultsFollowWindows) {
  auto bare = Machine::fromDescription(json::object());
  EXPECT_EQ(bare->computerName(), "LOCALHOST");
  EXPECT_EQ(bare->windowsDirectory(), "C:\\Windows");
  EXPECT_EQ(bare->systemDirectory(), "C:\\Windows\\system32");
  EXPECT_FALSE(bare->timeZone());

  auto fromRoot =
      Machine::fromDescription(json::parse(R"({"environment": {"SYSTEMROOT": "D:\\WINNT"}})"));
  EXPECT_EQ(fromRoot->windowsDirectory(), "D:\\WINNT");
  EXPECT_EQ(fromRoot->systemDirectory(), "D:\\WINNT\\system32");

  auto described = Machine::fromDescription(json::parse(
      R"({"now": "2026-11-22T10:15:30.25Z", "system": {"windowsDirectory": "E:\\W", "systemDirectory": "E:\\S"}})"));
  EXPECT_EQ(described->windowsDirectory(), "E:\\W");
  EXPECT_EQ(described->systemDirectory(), "E:\\S");
  EXPECT_EQ(described->now().time_since_epoch().count(), 1795342530250);
}

TEST(Machine, EnvironmentIgnoresCaseAndTakesVrxVariablesFromTheProcess) {
  setenv("VRX_EXCLUDEAPPS", "1", 1);
  setenv("VRX_LEVEL", "from process", 1);
  setenv("NOT_VRX_OTHER", "x", 1);
  auto machine = Machine::fromDescription(json::parse(
      R"({"environment": {"Path": "C:\\Windows", "vrx_Level": "from machine", "USERNAME": "alice"}})"));
  unsetenv("VRX_EXCLUDEAPPS");
  unsetenv("VRX_LEVEL");
  unsetenv("NOT_VRX_OTHER");

  const auto& environment = machine->environment();
  ASSERT_TRUE(environment.find("PATH"));
  EXPECT_EQ(environment.find("PATH")->value, "C:\\Windows");
  EXPECT_EQ(environment.find("path")->name, "Path");
  ASSERT_TRUE(environment.find("VRX_LEVEL"));
  EXPECT_EQ(environment.find("VRX_LEVEL")->name, "vrx_Level");
  EXPECT_EQ(environment.find("VRX_LEVEL")->value, "from process");
  ASSERT_TRUE(environment.find("vrx_excludeapps"));
  EXPECT_EQ(environment.find("vrx_excludeapps")->value, "1");
  EXPECT_FALSE(environment.find("NOT_VRX_OTHER"));
}

TEST(Machine, CommandsAnswerWhatTheyPrint) {
  auto machine = Machine::fromDescription(
      json::parse(R"({"commands": {"bcdedit": "Windows Boot Manager\r\n"}})"));
  EXPECT_EQ(machine->command("bcdedit"), "Windows Boot Manager\r\n");
  EXPECT_EQ(machine->command("BCDEdit"), "Windows Boot Manager\r\n");
  EXPECT_EQ(machine->command("systeminfo"), "");
}

}  // namespace
