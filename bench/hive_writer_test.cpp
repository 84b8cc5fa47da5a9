#include "bench/hive_writer.h"

#include <gtest/gtest.h>
#include <hivex.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "tests/winapi/test_machine.h"
#include "winapi/formats/reg_text.h"
#include "winapi/include/windows.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/machine.h"
#include "winapi/support/little_endian.h"
#include "winapi/support/text.h"

namespace bench {
namespace {

using winapi::RegistryKey;

std::string bytesOf(std::size_t size, char seed) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(seed + i * 7);
  return bytes;
}

// Names in shuffled order: the hive must list them sorted by upper-cased name ("_x" after
// "ABD", which a case-sensitive sort would put first).
std::vector<std::string> manyNames() {
  std::vector<std::string> names = {"abc", "ABD", "_x", "Z"};
  for (int i = 0; i < 2500; ++i) names.push_back((i % 2 ? "Key" : "key") + std::to_string(i));
  std::shuffle(names.begin(), names.end(), std::mt19937(7));
  return names;
}

// A tree with what a hive must keep: values of every size class (inline, one cell, one cell
// full, segments), names in Latin-1 and beyond, values out of name order, deep keys, and a key
// with more sub-keys than one list holds.
RegistryKey sampleTree() {
  RegistryKey root(L"ROOT");
  RegistryKey& values = root.makeSubKey(L"Values");
  values.setValue({L"", REG_SZ, winapi::utf16Bytes(L"default")});
  values.setValue({L"zEmpty", REG_BINARY, ""});
  values.setValue({L"Three", REG_BINARY, bytesOf(3, 1)});
  values.setValue({L"Dword", REG_DWORD, bytesOf(4, 2)});
  values.setValue({L"Five", REG_BINARY, bytesOf(5, 3)});
  values.setValue({L"OneCell", REG_BINARY, bytesOf(16344, 4)});
  values.setValue({L"TwoSegments", REG_BINARY, bytesOf(16345, 5)});
  values.setValue({L"ThreeSegments", REG_MULTI_SZ, bytesOf(40000, 6)});
  values.setValue({L"Caf\u00e9", REG_SZ, winapi::utf16Bytes(L"cr\u00e8me")});
  values.setValue({L"\u0417\u043d\u0430\u0447\u0435\u043d\u0438\u0435", REG_EXPAND_SZ,
                   winapi::utf16Bytes(L"%SystemRoot%")});
  root.makeSubKey(L"Cl\u00e9")
      .makeSubKey(L"\u041a\u043b\u044e\u0447")
      .makeSubKey(L"a")
      .makeSubKey(L"b")
      .setValue({L"Deep", REG_DWORD, bytesOf(4, 9)});
  RegistryKey& many = root.makeSubKey(L"Many");
  for (const std::string& name : manyNames())
    many.makeSubKey(std::wstring(name.begin(), name.end()))
        .setValue({L"Name", REG_SZ, winapi::utf16Bytes(std::wstring(name.begin(), name.end()))});
  return root;
}

void expectSameTree(const RegistryKey& expected, const RegistryKey& actual) {
  ASSERT_EQ(expected.values().size(), actual.values().size()) << winapi::toUtf8(expected.name());
  for (std::size_t i = 0; i < expected.values().size(); ++i) {
    const winapi::RegistryValue& want = expected.values()[i];
    const winapi::RegistryValue& got = actual.values()[i];
    EXPECT_EQ(want.name.text(), got.name.text());
    EXPECT_EQ(want.type, got.type) << winapi::toUtf8(want.name);
    // Compared as a whole, reported by size and first difference: the data runs to 40 000 bytes.
    auto differs =
        std::mismatch(want.data.begin(), want.data.end(), got.data.begin(), got.data.end());
    EXPECT_TRUE(want.data == got.data)
        << winapi::toUtf8(want.name) << ": " << got.data.size() << " bytes, not "
        << want.data.size() << "; first difference at " << differs.first - want.data.begin();
  }
  ASSERT_EQ(expected.subKeys().size(), actual.subKeys().size()) << winapi::toUtf8(expected.name());
  for (std::size_t i = 0; i < expected.subKeys().size(); ++i) {
    EXPECT_EQ(expected.subKeys()[i]->name(), actual.subKeys()[i]->name());
    expectSameTree(*expected.subKeys()[i], *actual.subKeys()[i]);
  }
}

// The sub-key names of root\`key` in the order the hive lists them.
std::vector<std::string> listedNames(const std::string& file, const char* key) {
  std::vector<std::string> names;
  hive_h* hive = hivex_open(file.c_str(), 0);
  if (!hive) return names;
  hive_node_h node = hivex_node_get_child(hive, hivex_root(hive), key);
  hive_node_h* children = node ? hivex_node_children(hive, node) : nullptr;
  for (hive_node_h* child = children; child && *child; ++child) {
    char* name = hivex_node_name(hive, *child);
    names.push_back(name);
    std::free(name);
  }
  std::free(children);
  hivex_close(hive);
  return names;
}

// The records of a hive counted by signature, walking its bins cell by cell.
struct Census {
  bool tiled = true;  // bins and cells fill the file exactly, with sizes Windows accepts
  std::map<std::string, std::size_t> records;
  std::size_t longestLeaf = 0;
};

Census census(const std::string& hive) {
  auto number = [&](std::size_t at, std::size_t bytes) {
    return winapi::littleEndian(hive, at, bytes);
  };
  Census result, broken;
  broken.tiled = false;
  std::size_t bin = 0x1000;
  for (std::size_t size; bin + 0x20 <= hive.size(); bin += size) {
    size = number(bin + 8, 4);
    if (hive.compare(bin, 4, "hbin") != 0 || number(bin + 4, 4) != bin - 0x1000 || size == 0 ||
        size % 0x1000 != 0 || bin + size > hive.size())
      return broken;
    std::size_t cell = bin + 0x20;
    for (std::size_t length; cell < bin + size; cell += length) {
      auto raw = static_cast<std::int32_t>(number(cell, 4));
      length = static_cast<std::size_t>(raw < 0 ? -static_cast<std::int64_t>(raw) : raw);
      if (length < 8 || length % 8 != 0) return broken;
      std::string signature = hive.substr(cell + 4, 2);
      if (raw >= 0 || !std::set<std::string>{"nk", "vk", "sk", "lh", "ri", "db"}.count(signature))
        continue;
      ++result.records[signature];
      if (signature == "lh")
        result.longestLeaf = std::max<std::size_t>(result.longestLeaf, number(cell + 6, 2));
    }
    result.tiled = result.tiled && cell == bin + size;
  }
  result.tiled = result.tiled && bin == hive.size() && number(0x28, 4) == hive.size() - 0x1000;
  return result;
}

TEST(HiveWriter, AHiveReadsBackKeyForKeyValueForValueInWindowsOrder) {
  TempDirectory work;
  const std::string file = work.path() + "/SOFTWARE";
  const RegistryKey tree = sampleTree();
  writeHiveFile(tree, file);

  RegistryKey readBack(L"ROOT");
  winapi::mountHiveFile(readBack, file);
  expectSameTree(tree, readBack);

  std::vector<std::string> expected = manyNames();
  std::sort(expected.begin(), expected.end(), [](const std::string& a, const std::string& b) {
    return winapi::asciiUpper(a) < winapi::asciiUpper(b);
  });
  EXPECT_EQ(listedNames(file, "Many"), expected);

  // 2 511 keys, 2 515 values, the one descriptor; the 2 504 sub-keys of Many in three leaves
  // of at most a thousand under one index root, the others' in one leaf each; two values in
  // segments.
  const Census records = census(hiveBytes(tree));
  EXPECT_TRUE(records.tiled);
  EXPECT_EQ(records.records,
            (std::map<std::string, std::size_t>{
                {"nk", 2511}, {"vk", 2515}, {"sk", 1}, {"lh", 7}, {"ri", 1}, {"db", 2}}));
  EXPECT_EQ(records.longestLeaf, 1000u);
}

// Long data is read from its segment list; a list that points outside the hive stops the read
// with a message that names the file.
TEST(HiveWriter, ALongValueWhoseSegmentsLieOutsideTheHiveIsReported) {
  TempDirectory work;
  const std::string file = work.path() + "/SOFTWARE";
  RegistryKey root(L"ROOT");
  root.makeSubKey(L"K").setValue({L"Long", REG_BINARY, std::string(16345, 'x')});
  std::string bytes = hiveBytes(root);
  const std::size_t db = bytes.rfind("db");
  ASSERT_NE(db, std::string::npos);
  bytes.replace(db + 4, 4, "\x00\xFF\xFF\x7F");  // the segment list's offset
  std::ofstream(file, std::ios::binary) << bytes;
  RegistryKey readBack(L"ROOT");
  try {
    winapi::mountHiveFile(readBack, file);
    ADD_FAILURE() << "read";
  } catch (const winapi::MachineError& error) {
    EXPECT_EQ(std::string(error.what()).rfind(file + ": ", 0), 0u) << error.what();
  }
}

TEST(HiveWriter, AnEmptyRootIsAHiveAndAFileThatCannotBeWrittenIsReported) {
  TempDirectory work;
  const std::string file = work.path() + "/NTUSER.DAT";
  writeHiveFile(RegistryKey(L"ROOT"), file);
  RegistryKey readBack(L"ROOT");
  winapi::mountHiveFile(readBack, file);
  EXPECT_TRUE(readBack.values().empty());
  EXPECT_TRUE(readBack.subKeys().empty());
  EXPECT_EQ(hiveBytes(RegistryKey(L"ROOT")).size(), 0x2000u);  // base block and one bin

  EXPECT_THROW(writeHiveFile(RegistryKey(L"ROOT"), work.path() + "/no/such/folder/SYSTEM"),
               std::runtime_error);
}

}  // namespace
}  // namespace bench
