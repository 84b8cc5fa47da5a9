#include "winapi/machine/wine_prefix.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "test_machine.h"
#include "winapi/machine/machine.h"

namespace winapi {
namespace {

std::string fixture(const std::string& name) {
  std::ifstream in(std::string(VRX_WINE_REG_FIXTURES) + "/" + name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A prefix of the fixture files, with `user` as its user.reg.
void makePrefix(const TempDirectory& dir, const std::string& user) {
  dir.write("system.reg", fixture("system.reg"));
  dir.write("user.reg", user);
  dir.makeDirectory("drive_c/windows");
}

std::string variable(const Machine& machine, const char* name) {
  const EnvironmentBlock::Variable* found = machine.environment().find(name);
  return found ? found->value : "<none>";
}

TEST(WinePrefix, DescriptionComesFromItsRegistry) {
  TempDirectory dir;
  makePrefix(dir, fixture("user.reg"));
  auto machine = Machine::load(dir.path());
  EXPECT_EQ(machine->computerName(), "VM");
  EXPECT_EQ(machine->windowsDirectory(), "C:\\windows");
  EXPECT_EQ(machine->systemDirectory(), "C:\\windows\\system32");
  const nlohmann::json& description = machine->description();
  EXPECT_EQ(description["userName"], "alice");
  EXPECT_EQ(description["version"]["major"], 6);
  EXPECT_EQ(description["version"]["minor"], 1);
  EXPECT_EQ(description["version"]["build"], 7601);
  EXPECT_EQ(description["version"]["csdVersion"], "Service Pack 1");
  EXPECT_EQ(description["version"]["productType"], 3);
  EXPECT_EQ(description["system"]["processorArchitecture"], 9);

  // System variables are expanded against what Windows sets first; the user's come over them.
  EXPECT_EQ(variable(*machine, "ComSpec"), "C:\\windows\\system32\\cmd.exe");
  EXPECT_EQ(variable(*machine, "windir"), "C:\\windows");
  EXPECT_EQ(variable(*machine, "SystemDrive"), "C:");
  EXPECT_EQ(variable(*machine, "COMPUTERNAME"), "VM");
  EXPECT_EQ(variable(*machine, "TEMP"), "C:\\users\\root\\Temp");
  EXPECT_EQ(variable(*machine, "USERNAME"), "alice");
  EXPECT_EQ(variable(*machine, "USERPROFILE"), "C:\\users\\alice");
  EXPECT_EQ(variable(*machine, "USERDOMAIN"), "VM");
  EXPECT_EQ(variable(*machine, "ProgramFiles"), "C:\\Program Files");
  EXPECT_EQ(variable(*machine, "ALLUSERSPROFILE"), "C:\\ProgramData");

  ASSERT_TRUE(machine->timeZone());
  const TimeZone& zone = *machine->timeZone();
  EXPECT_EQ(zone.bias, 480);
  EXPECT_EQ(zone.standardName, "Pacific Standard Time");
  EXPECT_EQ(zone.daylightName, "Pacific Daylight Time");
  EXPECT_EQ(zone.daylightBias, -60);
  EXPECT_EQ(zone.standardDate.month, 11);
  EXPECT_EQ(zone.standardDate.day, 1);
  EXPECT_EQ(zone.standardDate.hour, 2);
  EXPECT_EQ(zone.daylightDate.month, 3);
  EXPECT_EQ(zone.daylightDate.day, 2);

  // user.reg is the current user's hive, system.reg the machine's.
  EXPECT_NE(machine->registry()->root(Hive::CurrentUser).find({L"Software", L"Wine"}), nullptr);
  EXPECT_NE(machine->registry()->root(Hive::LocalMachine).find({L"SOFTWARE", L"Classes", L".txt"}),
            nullptr);
  EXPECT_TRUE(machine->files().find("C:\\Windows"));
}

TEST(WinePrefix, RegistryWithoutTheKeysSaysNothing) {
  TempDirectory dir;
  const std::string empty = "WINE REGISTRY Version 2\n";
  dir.write("system.reg", empty);
  dir.write("user.reg", empty);
  dir.makeDirectory("drive_c");
  auto machine = Machine::load(dir.path());
  const nlohmann::json& description = machine->description();
  for (const char* member : {"computerName", "userName", "version", "system", "timeZone"})
    EXPECT_FALSE(description.contains(member)) << member;
  EXPECT_FALSE(machine->timeZone());
  EXPECT_EQ(variable(*machine, "SystemRoot"), "<none>");
  EXPECT_EQ(machine->windowsDirectory(), "C:\\Windows");
}

TEST(WinePrefix, BadRegistryFileIsNamedWithItsLine) {
  TempDirectory dir;
  makePrefix(dir, "WINE REGISTRY Version 2\n\n[Environment] 1\n\"TEMP\"=dword:zz\n");
  try {
    Machine::load(dir.path());
    FAIL() << "a malformed user.reg loaded";
  } catch (const MachineError& error) {
    EXPECT_EQ(std::string(error.what()),
              dir.path() + "/user.reg:4: expected 1 to 8 hex digits after dword:");
  }
  // Without its user.reg a folder with drive_c/ is a described machine, not a prefix.
  TempDirectory described;
  described.write("system.reg", fixture("system.reg"));
  described.makeDirectory("drive_c");
  EXPECT_FALSE(isWinePrefix(described.path()));
  EXPECT_NE(Machine::load(described.path())->computerName(), "VM");
}

}  // namespace
}  // namespace winapi
