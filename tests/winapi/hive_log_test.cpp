// Dirty hives read with their transaction logs against the same hives as Windows recovered them,
// damaged logs and base blocks, and damaged or unusual hives (../shared/data/hives, skipped where
// absent).
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "test_hive.h"
#include "test_machine.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/machine.h"
#include "winapi/support/little_endian.h"
#include "winapi/support/unicode_text.h"

namespace fs = std::filesystem;

namespace winapi {
namespace {

const fs::path kHives = VRX_HIVE_FIXTURES;
const fs::path kDirty = kHives / "dirty";

struct ReadHive {
  Registry registry;
  HiveReading reading;
  const RegistryKey& root() const { return registry.root(Hive::CurrentUser); }
};

std::unique_ptr<ReadHive> readHive(const fs::path& file) {
  auto hive = std::make_unique<ReadHive>();
  hive->reading = mountHiveFile(hive->registry.root(Hive::CurrentUser), file);
  return hive;
}

std::string hex(std::string_view bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (unsigned char byte : bytes) text += {digits[byte >> 4], digits[byte & 15]};
  return text;
}

// A line per key and per value (name, type, data) below `key`, keys in their order.
void listKey(const RegistryKey& key, const std::string& path, std::vector<std::string>& lines) {
  lines.push_back(path);
  std::vector<std::string> values;
  for (const RegistryValue& value : key.values())
    values.push_back(path + " | " + wideToUtf8(value.name.text()) + " | " +
                     std::to_string(value.type) + " | " + hex(value.data));
  std::sort(values.begin(), values.end());
  lines.insert(lines.end(), values.begin(), values.end());
  for (const auto& sub : key.subKeys()) listKey(*sub, path + "\\" + wideToUtf8(sub->name()), lines);
}

// The first line where the trees differ; "" when they are the same.
std::string firstDifference(const RegistryKey& a, const RegistryKey& b) {
  std::vector<std::string> left, right;
  listKey(a, "", left);
  listKey(b, "", right);
  auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
  if (l == left.end() && r == right.end()) return "";
  return (l == left.end() ? "<end>" : *l) + "  <>  " + (r == right.end() ? "<end>" : *r);
}

std::string readBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string refusal(const fs::path& file) {
  try {
    readHive(file);
  } catch (const MachineError& error) {
    return error.what();
  }
  return "<read>";
}

#define SKIP_WITHOUT(folder) \
  if (!fs::is_directory(folder)) GTEST_SKIP() << folder << " is absent"

TEST(HiveLog, DirtyHivesReadWithTheirLogsAreWhatWindowsRecovered) {
  SKIP_WITHOUT(kDirty);
  const std::pair<const char*, const char*> cases[] = {
      {"NewDirtyHive1/NewDirtyHive", "NewDirtyHive1/RecoveredHive_Windows10"},
      {"OldDirtyHive/OldDirtyHive", "OldDirtyHive/RecoveredHive_Windows7"},
      // The same hive, its base block damaged: the log's copy takes its place.
      {"BadBaseBlockHive/BadBaseBlockHive", "OldDirtyHive/RecoveredHive_Windows7"}};
  for (auto [dirty, recovered] : cases) {
    SCOPED_TRACE(dirty);
    auto replayed = readHive(kDirty / dirty);
    EXPECT_EQ(firstDifference(replayed->root(), readHive(kDirty / recovered)->root()), "");
    EXPECT_TRUE(replayed->reading.warnings.empty());
  }
  auto old = readHive(kDirty / "OldDirtyHive/OldDirtyHive");
  EXPECT_NE(old->root().find({L"key_with_many_subkeys", L"5000", L"find_me_in_log"}), nullptr);
  const RegistryKey* key4500 = old->root().find({L"key_with_many_subkeys", L"4500"});
  ASSERT_NE(key4500, nullptr);
  EXPECT_NE(key4500->value(L"v"), nullptr);
}

TEST(HiveLog, ADirtyHiveWithoutUsableLogsIsReadAsItStandsWithOneWarning) {
  SKIP_WITHOUT(kDirty);
  TempDirectory dir;
  const fs::path alone = fs::path(dir.path()) / "OldDirtyHive";
  fs::copy_file(kDirty / "OldDirtyHive/OldDirtyHive", alone);
  auto old = readHive(alone);
  EXPECT_EQ(old->reading.warnings,
            std::vector<std::string>{alone.string() +
                                     ": dirty hive without usable transaction logs; read as "
                                     "it stands"});
  EXPECT_EQ(old->root().find({L"key_with_many_subkeys", L"5000", L"find_me_in_log"}), nullptr);
  EXPECT_EQ(old->root().find({L"key_with_many_subkeys", L"4500"})->value(L"v"), nullptr);

  // A log whose base block fails its checksum, one whose dirty vector lost its signature.
  for (const char* damaged : {"BadLogHive1/BadLogHive", "BadLogHive2/BadLogHive"}) {
    SCOPED_TRACE(damaged);
    auto hive = readHive(kDirty / damaged);
    ASSERT_EQ(hive->reading.warnings.size(), 1u);
    EXPECT_EQ(hive->reading.warnings[0].rfind((kDirty / damaged).string() + ": dirty hive", 0), 0u);
    EXPECT_EQ(firstDifference(hive->root(), old->root()), "");
  }

  fs::copy_file(kDirty / "NewDirtyHive1/NewDirtyHive", fs::path(dir.path()) / "NewDirtyHive");
  auto stale = readHive(fs::path(dir.path()) / "NewDirtyHive");
  for (RegistryPath path :
       {RegistryPath{L"Key1"}, RegistryPath{L"Key2", L"Key2_1"}, RegistryPath{L"Key2", L"Key2_2"}})
    EXPECT_NE(stale->root().find(path), nullptr);
  EXPECT_NE(firstDifference(stale->root(),
                            readHive(kDirty / "NewDirtyHive1/RecoveredHive_Windows10")->root()),
            "");

  const fs::path badBase = fs::path(dir.path()) / "BadBaseBlockHive";
  fs::copy_file(kDirty / "BadBaseBlockHive/BadBaseBlockHive", badBase);
  const std::string error = refusal(badBase);
  EXPECT_EQ(error.rfind(badBase.string() + ": base block damaged", 0), 0u) << error;
  EXPECT_NE(error.find("offset 508"), std::string::npos) << error;
  EXPECT_EQ(error.find('\n'), std::string::npos);
}

// Copies the NewDirtyHive with its logs into `dir` under `name`, its logs' suffixes spelt as
// given; returns the primary's path.
fs::path copyNewDirtyHive(const TempDirectory& dir, const std::string& name, const char* log1,
                          const char* log2) {
  const fs::path primary = fs::path(dir.path()) / name;
  fs::copy_file(kDirty / "NewDirtyHive1/NewDirtyHive", primary);
  fs::copy_file(kDirty / "NewDirtyHive1/NewDirtyHive.LOG1", primary.string() + log1);
  fs::copy_file(kDirty / "NewDirtyHive1/NewDirtyHive.LOG2", primary.string() + log2);
  return primary;
}

TEST(HiveLog, LogsAreFoundInAnyCaseAndChainedBySequenceNumber) {
  SKIP_WITHOUT(kDirty);
  TempDirectory dir;
  const fs::path user = copyNewDirtyHive(dir, "ntuser.dat", ".log1", ".Log2");
  Registry registry;
  const auto reading = mountNamedHive(registry, user);
  ASSERT_TRUE(reading);
  EXPECT_TRUE(reading->warnings.empty());
  auto recovered = readHive(kDirty / "NewDirtyHive1/RecoveredHive_Windows10");
  EXPECT_EQ(firstDifference(registry.root(Hive::CurrentUser), recovered->root()), "");

  // .LOG2 holds entries 3, 4 and 5 (at 512, 8192 and 32768): a byte of entry 4 changed ends the
  // replay after entry 3, as though the log had ended there.
  const std::string log2 = readBytes(kDirty / "NewDirtyHive1/NewDirtyHive.LOG2");
  std::string damaged = log2;
  damaged[8192 + 4096] ^= 1;
  dir.write("damaged/NewDirtyHive.LOG2", damaged);
  dir.write("cut/NewDirtyHive.LOG2", log2.substr(0, 8192));
  for (const char* folder : {"damaged", "cut"}) {
    const fs::path copy = fs::path(dir.path()) / folder / "NewDirtyHive";
    fs::copy_file(kDirty / "NewDirtyHive1/NewDirtyHive", copy);
    fs::copy_file(kDirty / "NewDirtyHive1/NewDirtyHive.LOG1", copy.string() + ".LOG1");
  }
  auto afterDamage = readHive(fs::path(dir.path()) / "damaged/NewDirtyHive");
  EXPECT_EQ(firstDifference(afterDamage->root(),
                            readHive(fs::path(dir.path()) / "cut/NewDirtyHive")->root()),
            "");
  EXPECT_NE(firstDifference(afterDamage->root(), recovered->root()), "");
  EXPECT_TRUE(afterDamage->reading.warnings.empty());
}

// Every entry's name, modification time and bytes.
std::string fingerprint(const fs::path& root) {
  std::string print;
  for (const auto& entry : fs::recursive_directory_iterator(root))
    print += entry.path().string() + "@" +
             std::to_string(entry.last_write_time().time_since_epoch().count()) + ":" +
             readBytes(entry.path()) + "\n";
  return print;
}

TEST(HiveLog, ReplayWritesNoFile) {
  SKIP_WITHOUT(kDirty);
  TempDirectory dir;
  const fs::path primary = copyNewDirtyHive(dir, "SOFTWARE", ".LOG1", ".LOG2");
  fs::copy_file(kDirty / "OldDirtyHive/OldDirtyHive", fs::path(dir.path()) / "SYSTEM");
  fs::copy_file(kDirty / "OldDirtyHive/OldDirtyHive.LOG1", fs::path(dir.path()) / "SYSTEM.LOG1");
  const std::string before = fingerprint(dir.path());
  Registry registry;
  ASSERT_TRUE(mountNamedHive(registry, primary));
  ASSERT_TRUE(mountNamedHive(registry, fs::path(dir.path()) / "SYSTEM"));
  EXPECT_EQ(fingerprint(dir.path()), before);
}

TEST(HiveLog, DamagedOrUnusualHivesAreReadOrRefusedWithOneLineWithinASecond) {
  SKIP_WITHOUT(kHives / "torture");
  std::size_t hives = 0;
  for (const auto& entry : fs::directory_iterator(kHives / "torture")) {
    SCOPED_TRACE(entry.path().string());
    const auto start = std::chrono::steady_clock::now();
    const std::string error = refusal(entry.path());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    if (error != "<read>") {
      EXPECT_EQ(error.rfind(entry.path().string() + ": ", 0), 0u) << error;
      EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    ++hives;
  }
  EXPECT_GT(hives, 20u);
}

TEST(HiveLog, ADescribedMachineKeepsTheWarningsOfItsHives) {
  TempDirectory dir;
  dir.makeDirectory("hives");
  const std::string file = dir.path() + "/hives/SOFTWARE";
  writeHive(file, "HKEY_LOCAL_MACHINE\\SOFTWARE", "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\n");
  std::string hive = readBytes(file);
  patchBaseBlock(hive, 4, 0x7777);  // a write begun and never finished
  dir.write("hives/SOFTWARE", hive);
  dir.write("machine.json", "{}");
  const auto machine = Machine::load(dir.path());
  EXPECT_NE(machine->registry()->root(Hive::LocalMachine).find({L"SOFTWARE", L"Vendor"}), nullptr);
  EXPECT_EQ(machine->warnings(),
            std::vector<std::string>{
                file + ": dirty hive without usable transaction logs; read as it stands"});
}

// Sets the last write of the key record ("nk") with that ASCII name.
void setKeyTime(std::string& hive, const std::string& name, std::uint64_t time) {
  for (std::size_t at = hive.find("nk"); at != std::string::npos; at = hive.find("nk", at + 1))
    if (static_cast<unsigned char>(hive[at + 0x48]) == name.size() &&
        hive.compare(at + 0x4C, name.size(), name) == 0)
      return putLittleEndian(hive, at + 4, time, 8);
  FAIL() << "no key " << name;
}

TEST(HiveLog, LastWrittenIsTheLaterOfTheBaseBlockAndTheNewestKey) {
  TempDirectory dir;
  const std::string file = dir.path() + "/SOFTWARE";
  writeHive(file, "HKEY_LOCAL_MACHINE\\SOFTWARE",
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Early]\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Early\\Late]"
            "\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Middle]\n\n");
  std::string hive = readBytes(file);
  setKeyTime(hive, "Early", 0x01D0000000000001);
  setKeyTime(hive, "Late", 0x01D0000000000003);
  setKeyTime(hive, "Middle", 0x01D0000000000002);
  const std::pair<std::uint32_t, std::uint64_t> cases[] = {
      {0, 0x01D0000000000003},  // no time stamp in the base block
      {0x01D00001, 0x01D0000100000000},
      {0x01C00000, 0x01D0000000000003}};
  for (auto [stamp, lastWritten] : cases) {
    patchBaseBlock(hive, 12, 0);
    patchBaseBlock(hive, 16, stamp);
    dir.write("SOFTWARE", hive);
    EXPECT_EQ(readHive(file)->reading.lastWritten, lastWritten) << std::hex << stamp;
  }
}

}  // namespace
}  // namespace winapi
