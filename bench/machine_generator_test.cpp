#include "bench/machine_generator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "tests/winapi/test_machine.h"
#include "winapi/formats/reg_file.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

std::size_t subKeyCount(const winapi::Registry& registry, const winapi::RegistryPath& path) {
  const winapi::RegistryKey* key = registry.root(winapi::Hive::LocalMachine).find(path);
  return key ? key->subKeys().size() : 0;
}

// The generated text loads, every application lands in one of the three places, and the names
// hold the duplicates and hot-fix updates the collector is meant to drop.
TEST(MachineGenerator, ApplicationsLoadIntoTheThreePlacesWithDuplicatesAndUpdates) {
  MachineSize size;
  size.applications = 2000;
  size.hotfixes = 40;
  const std::string text = applicationsRegText(size);
  EXPECT_EQ(text, applicationsRegText(size));
  size.seed = 2;
  EXPECT_NE(text, applicationsRegText(size));

  winapi::Registry registry;
  winapi::mergeRegFile(registry, text, "apps.reg", 1252);
  const winapi::RegistryPath uninstall = {L"SOFTWARE", L"Microsoft", L"Windows", L"CurrentVersion",
                                          L"Uninstall"};
  winapi::RegistryPath wow64 = uninstall;
  wow64.insert(wow64.begin() + 1, L"WOW6432Node");
  EXPECT_EQ(subKeyCount(registry, uninstall), 1200u);
  EXPECT_EQ(subKeyCount(registry, wow64), 500u);
  EXPECT_EQ(subKeyCount(registry, {L"SOFTWARE", L"Classes", L"Installer", L"Products"}), 300u);

  std::multiset<std::wstring> names;
  std::size_t updates = 0, unnamed = 0;
  for (const auto& key : registry.root(winapi::Hive::LocalMachine).find(uninstall)->subKeys()) {
    const winapi::RegistryValue* name = key->value(L"DisplayName");
    if (!name) {
      ++unnamed;
      continue;
    }
    std::wstring text = winapi::fromUtf16Bytes(name->data);
    names.insert(text);
    if (text.find(L"(KB1000") != std::wstring::npos) ++updates;
  }
  EXPECT_GT(unnamed, 0u);
  EXPECT_GT(updates, 0u);
  std::size_t repeated = 0;
  for (auto at = names.begin(); at != names.end(); at = names.upper_bound(*at))
    repeated += names.count(*at) > 1;
  // One in twenty repeats the product made just before its place in the cycle.
  EXPECT_GT(repeated, 80u);
}

// A generated machine is one the machine layer reads, with the template's files kept.
TEST(MachineGenerator, WritesAMachineTheLayerLoadsAndRefusesToOverwrite) {
  TempDirectory work;
  const fs::path templateDir = fs::path(work.path()) / "template";
  work.write("template/machine.json", R"({"computerName": "BIG", "users": []})");
  work.write("template/drive_c/Windows/inf/sysoc.inf",
             "[Version]\r\n\r\n[Components]\r\nGames=ocgen.dll,OcEntry,games.inf,,7\r\n");
  MachineSize size;
  size.applications = 300;
  size.components = 60;
  size.variables = 10;
  size.users = 3;
  size.hotfixes = 6;
  const std::string out = work.path() + "/big";
  writeMachine(templateDir.string(), out, size);
  EXPECT_THROW(writeMachine(templateDir.string(), out, size), std::runtime_error);

  auto machine = winapi::Machine::load(out);
  EXPECT_EQ(machine->computerName(), "BIG");
  EXPECT_EQ(machine->description()["users"].size(), 3u);
  EXPECT_TRUE(machine->environment().find("VRXGEN_VAR0"));
  const auto& registry = *machine->registry();
  EXPECT_EQ(subKeyCount(registry,
                        {L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion", L"HotFix"}),
            6u);
  // 60 components over three INF files, each listed in sysoc.inf before the template's line.
  for (const char* inf : {"genfam0.inf", "genfam1.inf", "genfam2.inf"})
    EXPECT_TRUE(machine->files().find(std::string("C:\\Windows\\inf\\") + inf)) << inf;
  EXPECT_FALSE(machine->files().find("C:\\Windows\\inf\\genfam3.inf"));
}

}  // namespace
}  // namespace bench
