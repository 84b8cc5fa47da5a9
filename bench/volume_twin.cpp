#include "bench/volume_twin.h"

#include <filesystem>
#include <initializer_list>
#include <stdexcept>

#include "bench/hive_writer.h"
#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/machine_file.h"
#include "winapi/machine/registry_folder.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/text.h"

namespace fs = std::filesystem;

namespace bench {

namespace {

using winapi::RegistryKey;

void copyKey(const RegistryKey& from, RegistryKey& to) {
  for (const winapi::RegistryValue& value : from.values()) to.setValue(value);
  for (const auto& subKey : from.subKeys()) copyKey(*subKey, to.makeSubKey(subKey->name()));
}

RegistryKey& makePath(RegistryKey& key, const winapi::RegistryPath& path) {
  RegistryKey* at = &key;
  for (const std::wstring& name : path) at = &at->makeSubKey(name);
  return *at;
}

// Sets a text value unless the key has one of that name: the described machine's own wins.
void keepOrSetText(RegistryKey& key, const wchar_t* name, const std::string& text) {
  if (!key.value(name)) key.setValue({name, REG_SZ, winapi::utf16Bytes(winapi::utf8ToWide(text))});
}

// Facts machine.json gives that a volume keeps in its hives, and the registry/*.reg read once,
// to be written as they are.
struct DescribedMachine {
  std::shared_ptr<winapi::Machine> facts;
  std::shared_ptr<winapi::Registry> registry;
};

DescribedMachine loadDescribed(const fs::path& dir) {
  nlohmann::json description = winapi::readMachineFile((dir / "machine.json").string());
  auto facts = winapi::Machine::fromDescription(description, dir.string(),
                                                std::make_shared<winapi::Registry>());
  return {facts, winapi::readRegistryFiles(dir.string(), facts->ansiCodePage())};
}

// The machine's SYSTEM key as its hive holds it: control sets by number.
RegistryKey systemHive(const RegistryKey& system, const std::string& computerName) {
  RegistryKey hive(L"SYSTEM");
  for (const auto& subKey : system.subKeys()) {
    bool current = winapi::equalsIgnoringCase(subKey->name(), L"CurrentControlSet");
    copyKey(*subKey, hive.makeSubKey(current ? L"ControlSet001" : subKey->name()));
  }
  std::string one("\1\0\0\0", 4);
  makePath(hive, {L"Select"}).setValue({L"Current", REG_DWORD, one});
  keepOrSetText(makePath(hive, {L"ControlSet001", L"Control", L"ComputerName", L"ComputerName"}),
                L"ComputerName", computerName);
  return hive;
}

// The folder `names` below `root`, made where missing; a folder already there in another case
// (drive C:'s Windows\system32) is used, as Windows would, rather than made a second time.
fs::path makeFolder(fs::path root, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    fs::path next = root / name;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(root, error))
      if (winapi::equalsIgnoringCase(entry.path().filename().string(), name)) next = entry.path();
    root = next;
    fs::create_directories(root);
  }
  return root;
}

void writeMachineHives(const DescribedMachine& machine, const fs::path& config) {
  RegistryKey& localMachine = machine.registry->root(winapi::Hive::LocalMachine);
  RegistryKey& software = localMachine.makeSubKey(L"SOFTWARE");
  keepOrSetText(makePath(software, {L"Microsoft", L"Windows NT", L"CurrentVersion"}), L"SystemRoot",
                machine.facts->windowsDirectory());
  writeHiveFile(software, config / "SOFTWARE");
  writeHiveFile(systemHive(localMachine.makeSubKey(L"SYSTEM"), machine.facts->computerName()),
                config / "SYSTEM");
}

// The user's profile, which the volume's reader takes for the user of the run.
void writeUserHive(const DescribedMachine& machine, const fs::path& volume) {
  std::string user = machine.facts->description().value("userName", "");
  if (user.empty()) return;
  fs::path profile = makeFolder(volume, {"Users", user.c_str()});
  writeHiveFile(machine.registry->root(winapi::Hive::CurrentUser), profile / "NTUSER.DAT");
}

}  // namespace

void writeVolumeTwin(const std::string& machineDir, const std::string& volumeDir) {
  fs::path volume(volumeDir);
  if (fs::exists(volume)) throw std::runtime_error(volumeDir + ": already exists");
  DescribedMachine machine = loadDescribed(machineDir);
  fs::path driveC = fs::path(machineDir) / "drive_c";
  fs::create_directories(volume);
  if (fs::exists(driveC)) fs::copy(driveC, volume, fs::copy_options::recursive);
  writeMachineHives(machine, makeFolder(volume, {"Windows", "System32", "config"}));
  writeUserHive(machine, volume);
}

}  // namespace bench
