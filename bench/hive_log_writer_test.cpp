// Hives made dirty, with logs written as Windows writes them, read as the hive the logs lead to:
// entries chained by sequence number whichever log holds the earlier ones, the chain ending at a
// damaged entry, the logs of a clean hive left alone.
#include "bench/hive_log_writer.h"

#include <gtest/gtest.h>

#include "bench/hive_writer.h"
#include "tests/winapi/test_machine.h"
#include "winapi/include/windows.h"
#include "winapi/machine/hive_file.h"

namespace bench {
namespace {

// `keys` keys, each with a value saying `version`.
std::string hiveOf(int keys, int version) {
  winapi::RegistryKey root(L"ROOT");
  for (int i = 0; i < keys; ++i)
    root.makeSubKey(L"Key" + std::to_wstring(i))
        .setValue({L"Version", REG_SZ, winapi::utf16Bytes(std::to_wstring(version) + L'\0')});
  return hiveBytes(root);
}

// "<keys> keys, version <Key0's version>", and the warnings.
std::string readAs(const std::string& file) {
  winapi::RegistryKey root(L"ROOT");
  const winapi::HiveReading reading = winapi::mountHiveFile(root, file);
  const winapi::RegistryValue* version = root.find({L"Key0"})->value(L"Version");
  std::string text = std::to_string(root.subKeys().size()) + " keys, version " +
                     std::to_string(version->data[0] - '0');
  for (const std::string& warning : reading.warnings) text += "; " + warning;
  return text;
}

TEST(HiveLogWriter, DirtyHivesReadAsTheirLogsLeadThem) {
  const std::string first = hiveOf(300, 1), second = hiveOf(400, 2), third = hiveOf(500, 3);
  // Entry 7 takes the first to the second, entries 8 on the second to the third.
  const std::string earlier = transactionLog(first, second, 7, 1000);
  const std::string later = transactionLog(second, third, 8, 3);
  ASSERT_GT(later.size(), earlier.size());
  TempDirectory dir;
  const std::string hive = dir.path() + "/SOFTWARE";
  auto write = [&](const std::string& primary, const std::string& log1, const std::string& log2) {
    dir.write("SOFTWARE", primary);
    dir.write("SOFTWARE.LOG1", log1);
    dir.write("SOFTWARE.LOG2", log2);
  };
  write(dirtyPrimary(first, 7), earlier, later);
  EXPECT_EQ(readAs(hive), "500 keys, version 3");
  write(dirtyPrimary(first, 7), later, earlier);
  EXPECT_EQ(readAs(hive), "500 keys, version 3");

  std::string damaged = later;
  damaged[512 + 40] ^= 1;  // the first page reference of entry 8
  write(dirtyPrimary(first, 7), earlier, damaged);
  EXPECT_EQ(readAs(hive), "400 keys, version 2");

  write(first, earlier, later);
  EXPECT_EQ(readAs(hive), "300 keys, version 1");
  write(dirtyPrimary(first, 7), "", "");
  EXPECT_EQ(readAs(hive), "300 keys, version 1; " + hive +
                              ": dirty hive without usable transaction logs; read as it stands");
}

}  // namespace
}  // namespace bench
