// A generated machine and its offline-volume twin inventory the same applications.
#include "bench/volume_twin.h"

#include <regex>

#include "bench/machine_generator.h"
#include "tests/vrxhost/vrxhost_fixture.h"
#include "winapi/support/text.h"

namespace bench {
namespace {

// The template keeps its time zone in machine.json apart from the one its registry names, and
// a volume has only the registry's: dates are compared without their UTC offsets.
std::string withoutUtcOffsets(const std::string& inventory) {
  return std::regex_replace(inventory, std::regex(R"(\.\d{6}[+-]\d{3}")"), "\"");
}

std::size_t foldersNamed(const fs::path& dir, const std::string& name) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(dir))
    count += winapi::equalsIgnoringCase(entry.path().filename().string(), name);
  return count;
}

TEST_F(Vrxhost, AVolumeTwinListsTheApplicationsOfItsMachine) {
  MachineSize size;
  size.applications = 2000;  // over a thousand Uninstall keys: more than one sub-key list
  size.hotfixes = 40;
  size.components = 30;
  size.users = 2;
  const fs::path machine = dir / "machine", volume = dir / "volume";
  writeMachine(VRX_BUILT_MACHINES "/sample", machine.string(), size);
  writeVolumeTwin(machine.string(), volume.string());
  EXPECT_THROW(writeVolumeTwin(machine.string(), volume.string()), std::runtime_error);
  EXPECT_TRUE(fs::exists(volume / "Users/alice/NTUSER.DAT"));
  EXPECT_TRUE(fs::exists(volume / "Windows/inf/genfam1.inf"));
  // The hives go into drive C:'s own system32, whatever its case, not a second folder beside it.
  EXPECT_EQ(foldersNamed(volume / "Windows", "System32"), 1u);

  for (const char* classes : {"QELTO_InstalledApplication", "QELTO_OSSubComponent"}) {
    const Result described = run(std::string(classes) + " --machine " + machine.string());
    const Result twin = run(std::string(classes) + " --machine " + volume.string());
    ASSERT_EQ(twin.status, 0) << twin.err;
    EXPECT_EQ(withoutUtcOffsets(twin.out), withoutUtcOffsets(described.out)) << classes;
  }
  const Result apps = run("QELTO_InstalledApplication --format table --machine " + volume.string());
  EXPECT_NE(apps.out.find("Product 1999"), std::string::npos);
}

}  // namespace
}  // namespace bench
