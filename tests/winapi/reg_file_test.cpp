#include "winapi/formats/reg_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "test_machine.h"
#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

using winapi::Hive;
using winapi::Registry;
using winapi::RegistryKey;

namespace {

const std::string kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";

std::string fixture(const std::string& name) {
  std::ifstream in(std::string(VRX_REG_FIXTURES) + "/" + name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Stored text: UTF-16LE with its terminator.
std::string utf16(const std::wstring& text) {
  return winapi::utf16Bytes(text) + std::string(2, '\0');
}

using Typed = std::pair<std::uint32_t, std::string>;

Typed valueOf(const RegistryKey* key, const std::wstring& name) {
  const winapi::RegistryValue* value = key ? key->value(name) : nullptr;
  return value ? Typed{value->type, value->data} : Typed{0xFFFFFFFF, "absent"};
}

std::vector<std::wstring> valueNames(const RegistryKey* key) {
  std::vector<std::wstring> names;
  for (const auto& value : key->values()) names.push_back(value.name.text());
  return names;
}

const RegistryKey* product(const Registry& registry) {
  return registry.root(Hive::LocalMachine).find({L"software", L"VENDOR", L"product"});
}

TEST(RegFile, ReadsTheUtf16FormWithItsContinuationsAndEscapes) {
  Registry registry;
  winapi::mergeRegFile(registry, fixture("10-software.reg"), "10-software.reg", 1252);
  const RegistryKey* key = product(registry);
  ASSERT_TRUE(key);
  EXPECT_EQ(valueNames(key),
            (std::vector<std::wstring>{L"DisplayName", L"Path", L"Languages", L"Version", L"Size",
                                       L"", L"Say \"hi\" \\ there"}));
  EXPECT_EQ(valueOf(key, L"displayname"), Typed(REG_SZ, utf16(L"Caf\u00E9 \u2122 Editor")));
  EXPECT_EQ(valueOf(key, L"Path"), Typed(REG_EXPAND_SZ, utf16(L"%ProgramFiles%\\V")));
  EXPECT_EQ(valueOf(key, L"Languages"), Typed(REG_MULTI_SZ, utf16(std::wstring(L"en\0de\0", 6))));
  EXPECT_EQ(valueOf(key, L"Version"), Typed(REG_DWORD, std::string("\xA0\x0F\x00\x0A", 4)));
  EXPECT_EQ(valueOf(key, L"Size"), Typed(REG_QWORD, std::string("\x00\x10\0\0\0\0\0\0", 8)));
  EXPECT_EQ(valueOf(key, L""), Typed(REG_SZ, utf16(L"default")));
  EXPECT_EQ(valueOf(key, L"Say \"hi\" \\ there"), Typed(REG_SZ, utf16(L"a\\b\"c")));
  // Keys on the way are made, with no values.
  const RegistryKey* vendor = registry.root(Hive::LocalMachine).find({L"SOFTWARE", L"Vendor"});
  ASSERT_TRUE(vendor);
  EXPECT_TRUE(vendor->values().empty());
  EXPECT_EQ(valueOf(registry.root(Hive::CurrentUser).find({L"Environment"}), L"TEMP"),
            Typed(REG_SZ, utf16(L"C:\\Temp")));
}

TEST(RegFile, Regedit4IsAnsiTextAndClassesRootIsTheMachinesClasses) {
  Registry registry;
  winapi::mergeRegFile(registry, fixture("30-classes.reg"), "30-classes.reg", 1252);
  const RegistryKey* txt =
      registry.root(Hive::LocalMachine).find({L"SOFTWARE", L"Classes", L".txt"});
  ASSERT_TRUE(txt);
  EXPECT_EQ(valueOf(txt, L""), Typed(REG_SZ, utf16(L"txtfile")));
  EXPECT_EQ(valueOf(txt, L"Owner"), Typed(REG_SZ, utf16(L"Jos\u00E9")));
  // Its hex strings were ANSI and are kept as UTF-16LE.
  EXPECT_EQ(valueOf(txt, L"Expand"), Typed(REG_EXPAND_SZ, utf16(L"%SystemRoot%")));
  EXPECT_EQ(valueOf(txt, L"Multi"), Typed(REG_MULTI_SZ, utf16(std::wstring(L"\u00E9\0b\0", 4))));
}

TEST(RegFile, FilesMergeInNameOrderWithTheirDeletions) {
  TempDirectory dir;
  for (const char* name : {"30-classes.reg", "20-edits.reg", "10-software.reg"})
    dir.write(std::string("registry/") + name, fixture(name));
  dir.write("registry/README.txt", "not a .reg file");
  auto machine = winapi::Machine::load(dir.path());
  const Registry& registry = *machine->registry();
  const RegistryKey* key = product(registry);
  ASSERT_TRUE(key);
  // "Size" deleted, "Version" replaced in its place, "Added" written last.
  EXPECT_EQ(valueNames(key),
            (std::vector<std::wstring>{L"DisplayName", L"Path", L"Languages", L"Version", L"",
                                       L"Say \"hi\" \\ there", L"Added"}));
  EXPECT_EQ(valueOf(key, L"VERSION"), Typed(REG_DWORD, std::string("\x01\0\0\0", 4)));
  EXPECT_EQ(valueOf(key, L"Added"), Typed(REG_SZ, std::string(2, '\0')));
  EXPECT_FALSE(registry.root(Hive::CurrentUser).find({L"Environment"}));
  // Deleting a missing key makes nothing, and the values after it are passed over.
  EXPECT_FALSE(registry.root(Hive::LocalMachine).find({L"SOFTWARE", L"Vendor", L"Missing"}));
  EXPECT_TRUE(registry.root(Hive::LocalMachine).find({L"SOFTWARE", L"Classes", L".txt"}));
}

// Keys that share their parents with the key before them, in another spelling, in the other
// hive, and again after a deletion of one of those parents.
TEST(RegFile, KeysAfterOneAnotherLandWhereTheirPathsSay) {
  Registry registry;
  winapi::mergeRegFile(registry,
                       kHeader +
                           "[HKEY_LOCAL_MACHINE\\A\\B\\C]\r\n\"v\"=\"1\"\r\n"
                           "[HKEY_LOCAL_MACHINE\\a\\b\\D]\r\n\"v\"=\"2\"\r\n"
                           "[HKEY_CURRENT_USER\\A\\B\\C]\r\n\"v\"=\"3\"\r\n"
                           "[-HKEY_LOCAL_MACHINE\\A\\B]\r\n"
                           "[HKEY_LOCAL_MACHINE\\A\\B\\C\\E]\r\n\"v\"=\"4\"\r\n",
                       "x.reg", 1252);
  const RegistryKey& machine = registry.root(Hive::LocalMachine);
  ASSERT_EQ(machine.subKeys().size(), 1u);
  const RegistryKey* b = machine.find({L"A", L"B"});
  ASSERT_TRUE(b);
  // The deleted key took C and D with it; C came back, empty but for E.
  ASSERT_EQ(b->subKeys().size(), 1u);
  EXPECT_TRUE(b->subKeys()[0]->values().empty());
  EXPECT_EQ(valueOf(machine.find({L"A", L"B", L"C", L"E"}), L"v"), Typed(REG_SZ, utf16(L"4")));
  EXPECT_EQ(valueOf(registry.root(Hive::CurrentUser).find({L"a", L"b", L"c"}), L"v"),
            Typed(REG_SZ, utf16(L"3")));
}

TEST(RegFile, MalformedFilesNameTheLineAndColumn) {
  const std::string key = kHeader + "[HKEY_CURRENT_USER\\a]\r\n";
  const std::pair<std::string, const char*> cases[] = {
      {"REGEDIT5\r\n",
       "x.reg:1: expected \"Windows Registry Editor Version 5.00\" or \"REGEDIT4\" as the first "
       "line"},
      {std::string("\xFF\xFEW\0x", 5), "x.reg: UTF-16LE text of an odd length"},
      {kHeader + "[HKEY_CURRENT_USER\\\xFF]", "x.reg:3: not UTF-8 text"},
      {kHeader + "[HKLM\\SOFTWARE]",
       "x.reg:3:2: regedit does not accept the abbreviation HKLM; write HKEY_LOCAL_MACHINE"},
      {kHeader + "[HKEY_USERS\\.DEFAULT]",
       "x.reg:3:2: keys under HKEY_USERS are not kept for a machine; write them under "
       "HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER"},
      {kHeader + "[HKEY_LOCAL_MASHINE\\x]", "x.reg:3:2: unknown root key \"HKEY_LOCAL_MASHINE\""},
      {kHeader + "[HKEY_CURRENT_USER\\a\\\\b]", "x.reg:3:22: empty key name"},
      {kHeader + "[HKEY_CURRENT_USER\\" + std::string(256, 'k') + "]",
       "x.reg:3:20: a key name is at most 255 characters"},
      {kHeader + "[HKEY_CURRENT_USER\\a  ", "x.reg:3:21: expected ']' at the end of the key"},
      {kHeader + "[-HKEY_LOCAL_MACHINE]", "x.reg:3:3: a root key cannot be deleted"},
      {kHeader + "\"x\"=\"1\"", "x.reg:3:1: a value needs a [key] line before it"},
      {key + "\"name\" \"x\"", "x.reg:4:8: expected '=' after the value name"},
      {key + "\"name=1", "x.reg:4:1: missing the closing '\"'"},
      {key + "\"a\\q\"=\"x\"", "x.reg:4:3: expected \\\\ or \\\" after a backslash"},
      {key + "\"a\"=dword:123456789", "x.reg:4:11: expected 1 to 8 hex digits after dword:"},
      {key + "\"a\"=hex:01,,03", "x.reg:4:12: expected a hex byte, 00 to ff"},
      {key + "\"a\"=hex:100", "x.reg:4:9: expected a hex byte, 00 to ff"},
      {key + "\"a\"=hex:01,02,\\\r\n  03,zz", "x.reg:5:6: expected a hex byte, 00 to ff"},
      {key + "\"a\"=hex(7:00", "x.reg:4:9: expected a hex type number and ')' after hex("},
      {key + "\"a\"=hex 01", "x.reg:4:8: expected ':' after hex"},
      {key + "\"a\"=str:\"x\"",
       "x.reg:4:5: expected \"text\", dword:, hex:, hex(type): or - after '='"},
      {key + "\"a\"=\"x\" y", "x.reg:4:9: unexpected text after the value"},
      {key + "  junk", "x.reg:4:3: expected [key], \"name\"=, @= or a ; comment"},
  };
  for (const auto& [text, expected] : cases) {
    Registry registry;
    try {
      winapi::mergeRegFile(registry, text, "x.reg", 1252);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const winapi::MachineError& error) {
      EXPECT_EQ(std::string(error.what()), expected) << text;
    }
  }
}

// Files that delete nothing are read side by side and merged afterwards; what the machine holds
// must be what reading them one after another gives.
TEST(RegFile, FilesReadSideBySideMergeAsThoughReadInTurn) {
  TempDirectory dir;
  const std::string vendor = kHeader + "[HKEY_LOCAL_MACHINE\\Soft\\Vendor";
  dir.write("registry/10-a.reg", vendor + "]\n\"A\"=\"1\"\n\"B\"=\"2\"\n" +
                                     "[HKEY_LOCAL_MACHINE\\Soft\\Vendor\\Old]\n\"x\"=\"1\"\n");
  dir.write("registry/20-b.reg",
            kHeader + "[HKEY_LOCAL_MACHINE\\SOFT\\vendor]\n\"b\"=\"3\"\n\"C\"=\"4\"\n" +
                "[HKEY_LOCAL_MACHINE\\Soft\\Vendor\\New]\n");
  dir.write("registry/30-c.reg", vendor + "\\Old]\n\"x\"=-\n");
  dir.write("registry/40-d.reg", kHeader + "[-HKEY_LOCAL_MACHINE\\Soft\\Vendor\\Old]\n");
  dir.write("registry/50-e.reg", vendor + "\\Old]\n\"y\"=\"5\"\n");
  auto machine = winapi::Machine::load(dir.path());
  const RegistryKey* key = machine->registry()->root(Hive::LocalMachine).find({L"soft", L"vendor"});
  ASSERT_TRUE(key);
  EXPECT_EQ(key->name(), L"Vendor");
  EXPECT_EQ(valueNames(key), (std::vector<std::wstring>{L"A", L"B", L"C"}));
  EXPECT_EQ(valueOf(key, L"B"), Typed(REG_SZ, utf16(L"3")));
  ASSERT_EQ(key->subKeys().size(), 2u);
  EXPECT_EQ(key->subKeys()[0]->name(), L"New");
  EXPECT_EQ(valueNames(key->subKeys()[1].get()), std::vector<std::wstring>{L"y"});
}

// Keys enough to fill `lines` lines of a file, each of its own.
std::string fillerKeys(const std::string& parent, std::size_t lines) {
  std::string text;
  for (std::size_t i = 0; i < lines / 2; ++i)
    text += "[HKEY_LOCAL_MACHINE\\" + parent + "\\K" + std::to_string(i) + "]\n\"v\"=\"x\"\n";
  return text;
}

// A large file is read in parts side by side; the parts must give what one pass gives.
TEST(RegFile, ALargeFileReadInPartsIsReadAsInOnePass) {
  const std::string vendor = "[HKEY_LOCAL_MACHINE\\Soft\\Vendor]\n";
  const std::string text = kHeader + vendor + "\"A\"=\"1\"\n\"B\"=\"2\"\n" +
                           fillerKeys("Soft\\One", 40000) +
                           "[HKEY_LOCAL_MACHINE\\SOFT\\vendor]\n\"b\"=\"3\"\n\"C\"=\"4\"\n" +
                           fillerKeys("Soft\\Two", 40000) + vendor + "\"D\"=hex:01,\\\n  02\n";
  Registry registry;
  winapi::mergeRegFile(registry, text, "x.reg", 1252);
  const RegistryKey& machine = registry.root(Hive::LocalMachine);
  const RegistryKey* key = machine.find({L"Soft", L"Vendor"});
  ASSERT_TRUE(key);
  EXPECT_EQ(key->name(), L"Vendor");
  EXPECT_EQ(valueNames(key), (std::vector<std::wstring>{L"A", L"B", L"C", L"D"}));
  EXPECT_EQ(valueOf(key, L"B"), Typed(REG_SZ, utf16(L"3")));
  EXPECT_EQ(valueOf(key, L"D"), Typed(REG_BINARY, std::string("\x01\x02")));
  EXPECT_EQ(machine.find({L"Soft", L"One"})->subKeys().size(), 20000u);
  EXPECT_EQ(machine.find({L"Soft", L"Two"})->subKeys().size(), 20000u);

  // A hex list that goes on into a key line is an error there, wherever the parts are cut; of
  // two errors the first is named, by its line in the whole file.
  const std::string broken =
      kHeader + fillerKeys("A", 16382) + "\"h\"=hex:01,\\\n" + fillerKeys("C", 40000) + "junk\n";
  try {
    winapi::mergeRegFile(registry, broken, "x.reg", 1252);
    ADD_FAILURE() << "accepted";
  } catch (const winapi::MachineError& error) {
    EXPECT_EQ(std::string(error.what()), "x.reg:16386:1: expected a hex byte, 00 to ff");
  }
}

TEST(RegFile, AMachineWithABadFileDoesNotLoad) {
  TempDirectory dir;
  dir.write("registry/10-good.reg", fixture("10-software.reg"));
  dir.write("registry/20-bad.reg", kHeader + "[HKEY_LOCAL_MACHINE\\x]\n\"n\" = 1\n");
  // The first bad file in name order is the one named, however the files were read.
  dir.write("registry/30-bad.reg", kHeader + "junk\n");
  try {
    winapi::Machine::load(dir.path());
    ADD_FAILURE() << "loaded";
  } catch (const winapi::MachineError& error) {
    EXPECT_EQ(std::string(error.what()),
              dir.path() +
                  "/registry/20-bad.reg:4:7: expected \"text\", dword:, hex:, "
                  "hex(type): or - after '='");
  }
}

}  // namespace
