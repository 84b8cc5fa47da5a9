#include "winapi/formats/reg_export.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "fuzz/registry_values.h"
#include "winapi/formats/reg_file.h"
#include "winapi/formats/wine_reg_file.h"
#include "winapi/include/windows.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/machine.h"

namespace fs = std::filesystem;
using winapi::Hive;
using winapi::Registry;
using winapi::RegistryKey;

namespace {

std::string exported(const Registry& registry, const std::string& key) {
  std::ostringstream out;
  winapi::exportRegistry(registry, winapi::parseRegistryKeyName(key), out);
  return out.str();
}

// The exported text after its byte-order mark, which it must start with.
std::wstring exportedText(const Registry& registry, const std::string& key) {
  std::string bytes = exported(registry, key);
  EXPECT_EQ(bytes.substr(0, 2), "\xFF\xFE");
  return winapi::fromUtf16Bytes(std::string_view(bytes).substr(2));
}

// Stored text: UTF-16LE with its terminator.
std::string utf16z(const std::wstring& text) {
  return winapi::utf16Bytes(text) + std::string(2, '\0');
}

std::string counting(int from, int to) {
  std::string bytes;
  for (int byte = from; byte < to; ++byte) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

// Both hives exported, read back into a fresh registry, and compared key by key.
void expectRoundTrip(const Registry& registry, const std::string& what) {
  for (auto [hive, root] : {std::pair{Hive::LocalMachine, "HKEY_LOCAL_MACHINE"},
                            std::pair{Hive::CurrentUser, "HKEY_CURRENT_USER"}}) {
    Registry again;
    winapi::mergeRegFile(again, exported(registry, root), "exported.reg", 1252);
    EXPECT_EQ(firstDifference(registry.root(hive), again.root(hive), root), "") << what;
  }
}

TEST(RegExport, ValuesAreWrittenAsRegeditWritesThemAndReadBackTheSame) {
  Registry registry;
  RegistryKey& key = registry.root(Hive::LocalMachine)
                         .makeSubKey(L"SOFTWARE")
                         .makeSubKey(L"Vendor")
                         .makeSubKey(L"Clé de Ünïcode");
  key.setValue({L"", REG_SZ, utf16z(L"default")});
  key.setValue({L"Say \"hi\" \\ there", REG_SZ, utf16z(L"a\\b\"c")});
  key.setValue({L"Empty", REG_SZ, utf16z(L"")});
  key.setValue({L"Embedded NUL", REG_SZ, utf16z(std::wstring(L"a\0b", 3))});
  key.setValue({L"No terminator", REG_SZ, winapi::utf16Bytes(L"ab")});
  key.setValue({L"Two lines", REG_SZ, utf16z(L"a\nb")});
  key.setValue({L"Empty multi", REG_MULTI_SZ, ""});
  key.setValue({L"Size", REG_QWORD, std::string("\x00\x10\0\0\0\0\0\0", 8)});
  key.setValue({L"Nothing", REG_NONE, "\x01\x02"});
  key.setValue({L"Big type", 0x100000, "\xff"});
  key.setValue({L"Count", REG_DWORD, "\x0d\x0c\x0b\x0a"});
  key.setValue({L"Short dword", REG_DWORD, "\x01\x02"});
  key.setValue({L"Path", REG_EXPAND_SZ, utf16z(L"%")});
  key.setValue({L"Blob", REG_BINARY, counting(0, 100)});
  // Four UTF-16 units, three characters: regedit counts the units.
  key.setValue({L"\U0001D11Eab", REG_BINARY, counting(0, 30)});
  const std::wstring text = exportedText(registry, "HKLM\\SOFTWARE\\Vendor\\Clé de Ünïcode");
  EXPECT_EQ(text,
            L"Windows Registry Editor Version 5.00\r\n\r\n"
            L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\Clé de Ünïcode]\r\n"
            L"@=\"default\"\r\n"
            L"\"Say \\\"hi\\\" \\\\ there\"=\"a\\\\b\\\"c\"\r\n"
            L"\"Empty\"=\"\"\r\n"
            L"\"Embedded NUL\"=hex(1):61,00,00,00,62,00,00,00\r\n"
            L"\"No terminator\"=hex(1):61,00,62,00\r\n"
            L"\"Two lines\"=hex(1):61,00,0a,00,62,00,00,00\r\n"
            L"\"Empty multi\"=hex(7):\r\n"
            L"\"Size\"=hex(b):00,10,00,00,00,00,00,00\r\n"
            L"\"Nothing\"=hex(0):01,02\r\n"
            L"\"Big type\"=hex(100000):ff\r\n"
            L"\"Count\"=dword:0a0b0c0d\r\n"
            L"\"Short dword\"=hex(4):01,02\r\n"
            L"\"Path\"=hex(2):25,00,00,00\r\n"
            L"\"Blob\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,\\\r\n"
            L"  16,17,18,19,1a,1b,1c,1d,1e,1f,20,21,22,23,24,25,26,27,28,29,2a,2b,2c,2d,2e,\\\r\n"
            L"  2f,30,31,32,33,34,35,36,37,38,39,3a,3b,3c,3d,3e,3f,40,41,42,43,44,45,46,47,\\\r\n"
            L"  48,49,4a,4b,4c,4d,4e,4f,50,51,52,53,54,55,56,57,58,59,5a,5b,5c,5d,5e,5f,60,\\\r\n"
            L"  61,62,63\r\n"
            L"\"\U0001D11Eab\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,"
            L"15,\\\r\n"
            L"  16,17,18,19,1a,1b,1c,1d\r\n"
            L"\r\n");
  expectRoundTrip(registry, "odd values");
}

TEST(RegExport, KeysGoOutFromTheKeyDownInTheirOrderAndAMissingKeyWritesNothing) {
  Registry registry;
  RegistryKey& user = registry.root(Hive::CurrentUser);
  user.makeSubKey(L"b");
  user.makeSubKey(L"A").makeSubKey(L"z").setValue({L"v", REG_DWORD, std::string(4, '\0')});
  user.makeSubKey(L"a").makeSubKey(L"Y");
  registry.root(Hive::LocalMachine)
      .makeSubKey(L"SOFTWARE")
      .makeSubKey(L"Classes")
      .makeSubKey(L".txt");
  EXPECT_EQ(exportedText(registry, "hkcu"),
            L"Windows Registry Editor Version 5.00\r\n\r\n"
            L"[HKEY_CURRENT_USER]\r\n\r\n"
            L"[HKEY_CURRENT_USER\\A]\r\n\r\n"
            L"[HKEY_CURRENT_USER\\A\\Y]\r\n\r\n"
            L"[HKEY_CURRENT_USER\\A\\z]\r\n\"v\"=dword:00000000\r\n\r\n"
            L"[HKEY_CURRENT_USER\\b]\r\n\r\n");
  // Names as the registry spells them; the machine's classes under their own root.
  EXPECT_EQ(exportedText(registry, "hkey_classes_root\\.TXT"),
            L"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CLASSES_ROOT\\.txt]\r\n\r\n");

  for (auto [key, message] :
       {std::pair{"HKLM\\SOFTWARE\\Nope",
                  "HKEY_LOCAL_MACHINE\\SOFTWARE\\Nope: no such key in the machine's registry"},
        std::pair{"hku\\.DEFAULT",
                  "HKEY_USERS\\.DEFAULT: no such key in the machine's registry (it keeps "
                  "HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER)"}}) {
    std::ostringstream out;
    try {
      winapi::exportRegistry(registry, winapi::parseRegistryKeyName(key), out);
      ADD_FAILURE() << key << " exported";
    } catch (const winapi::MachineError& error) {
      EXPECT_EQ(std::string(error.what()), message);
    }
    EXPECT_EQ(out.str(), "") << key;
  }
  for (const char* malformed : {"", "SOFTWARE\\Vendor", "HKLM\\", "HKLM\\\\SOFTWARE", "HKXX"})
    EXPECT_THROW(winapi::parseRegistryKeyName(malformed), std::invalid_argument) << malformed;
}

TEST(RegExport, EveryExampleMachineAndWinePrefixReadsBackTheSame) {
  for (const auto& entry : fs::directory_iterator(VRX_EXAMPLE_MACHINES)) {
    // The sample machine as the build completes it.
    fs::path machine = entry.path().filename() == "sample" ? fs::path(VRX_BUILT_MACHINES) / "sample"
                                                           : entry.path();
    expectRoundTrip(*winapi::Machine::load(machine.string())->registry(), machine.string());
  }
  // A Wine prefix's registry, with its links and hex(6) values.
  Registry wine;
  for (auto [hive, file] :
       {std::pair{Hive::LocalMachine, "system.reg"}, std::pair{Hive::CurrentUser, "user.reg"}}) {
    std::ifstream in(fs::path(VRX_WINE_REG_FIXTURES) / file, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    winapi::mergeWineRegFile(wine, hive, bytes, file);
  }
  expectRoundTrip(wine, "the Wine prefix");
}

TEST(RegExport, RealHivesOfOddNamesAndStringsReadBackTheSame) {
  const fs::path hives = VRX_SHARED_HIVES;
  if (!fs::is_directory(hives)) GTEST_SKIP() << hives << " is absent";
  for (const char* name : {"StringValuesHive", "MultiSzHive", "UnicodeHive", "ExtendedASCIIHive",
                           "UpcaseHive", "CompHive", "BigDataHive", "ManySubkeysHive"}) {
    Registry registry;
    winapi::mountHiveFile(registry.root(Hive::LocalMachine).makeSubKey(L"SOFTWARE"), hives / name);
    expectRoundTrip(registry, name);
  }
}

}  // namespace
