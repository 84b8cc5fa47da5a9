#include "winapi/formats/wine_reg_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

namespace winapi {
namespace {

std::string fixture(const std::string& name) {
  std::ifstream in(std::string(VRX_WINE_REG_FIXTURES) + "/" + name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::wstring text(const RegistryValue& value) {
  std::wstring all = fromUtf16Bytes(value.data);
  return all.substr(0, all.size() - 1);
}

const RegistryValue& valueAt(const Registry& registry, Hive hive, const RegistryPath& path,
                             const std::wstring& name) {
  const RegistryKey* key = registry.root(hive).find(path);
  if (!key) throw std::runtime_error("no such key");
  const RegistryValue* value = key->value(name);
  if (!value) throw std::runtime_error("no such value");
  return *value;
}

std::string errorOf(const std::string& bytes) {
  Registry registry;
  try {
    mergeWineRegFile(registry, Hive::LocalMachine, bytes, "system.reg");
  } catch (const MachineError& error) {
    return error.what();
  }
  return "";
}

// A key K<index>\\<name> linking to K<target>.
std::string linkTo(int index, const std::string& name, int target) {
  std::string hex;
  for (char c : "\\REGISTRY\\MACHINE\\K" + std::to_string(target)) {
    char byte[8];
    std::snprintf(byte, sizeof byte, "%s%02x,00", hex.empty() ? "" : ",", c);
    hex += byte;
  }
  return "[K" + std::to_string(index) + "\\\\" + name +
         "] 1\n#link\n\"SymbolicLinkValue\"=hex(6):" + hex + "\n";
}

const std::string kHeader =
    "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\Machine\n";

TEST(WineRegFile, TypesEscapesAndContinuedLines) {
  Registry registry;
  mergeWineRegFile(registry, Hive::LocalMachine, fixture("system.reg"), "system.reg");
  mergeWineRegFile(registry, Hive::CurrentUser, fixture("user.reg"), "user.reg");
  RegistryPath version{L"Software", L"Microsoft", L"Windows NT", L"CurrentVersion"};
  const RegistryValue& build =
      valueAt(registry, Hive::LocalMachine, version, L"CurrentBuildNumber");
  EXPECT_EQ(build.type, static_cast<std::uint32_t>(REG_SZ));
  EXPECT_EQ(text(build), L"7601");
  // A hex list wrapped over two lines loses no byte at the join.
  const RegistryValue& id = valueAt(registry, Hive::LocalMachine, version, L"DigitalProductId");
  EXPECT_EQ(id.type, static_cast<std::uint32_t>(REG_BINARY));
  ASSERT_EQ(id.data.size(), 20u);
  EXPECT_EQ(id.data[17], '\x11');
  EXPECT_EQ(id.data[19], '\x13');
  EXPECT_EQ(valueAt(registry, Hive::LocalMachine, version, L"InstallDate").data,
            std::string("\x9a\x01\xe5\x4b", 4));
  EXPECT_EQ(text(valueAt(registry, Hive::LocalMachine, version, L"SystemRoot")), L"C:\\windows");

  RegistryPath environment{L"System", L"CurrentControlSet", L"Control", L"Session Manager",
                           L"Environment"};
  const RegistryValue& comSpec = valueAt(registry, Hive::LocalMachine, environment, L"ComSpec");
  EXPECT_EQ(comSpec.type, static_cast<std::uint32_t>(REG_EXPAND_SZ));
  EXPECT_EQ(text(comSpec), L"%SystemRoot%\\system32\\cmd.exe");
  const RegistryValue& multi = valueAt(
      registry, Hive::LocalMachine,
      {L"Software", L"Microsoft", L"Windows NT", L"CurrentVersion", L"FontLink", L"SystemLink"},
      L"Meiryo");
  EXPECT_EQ(multi.type, static_cast<std::uint32_t>(REG_MULTI_SZ));
  EXPECT_EQ(fromUtf16Bytes(multi.data),
            std::wstring(L"SEGOEUI.TTF,Segoe UI\0MSGOTHIC.TTC,MS UI Gothic\0\0", 48));
  EXPECT_EQ(text(valueAt(registry, Hive::LocalMachine, {L"Software", L"Classes", L".txt"}, L"")),
            L"txtfile");

  // user.reg has CRLF line ends, control escapes, \x of one to four digits, octal, UTF-8.
  RegistryPath userEnvironment{L"Environment"};
  EXPECT_EQ(text(valueAt(registry, Hive::CurrentUser, userEnvironment, L"Tab")), L"a\tb\nc\"d\\e");
  EXPECT_EQ(text(valueAt(registry, Hive::CurrentUser, userEnvironment, L"Caf\u00e9")),
            L"Z\u00fcrich");
  EXPECT_EQ(text(valueAt(registry, Hive::CurrentUser, userEnvironment, L"Short")), L"\u41bcA");
  // Escaped surrogate pairs are one character each.
  const RegistryKey* international =
      registry.root(Hive::CurrentUser).find({L"Control Panel", L"International"});
  ASSERT_NE(international, nullptr);
  ASSERT_EQ(international->subKeys().size(), 1u);
  EXPECT_EQ(international->subKeys()[0]->name(), L"\U0001F30E\U0001F30F");
  EXPECT_EQ(text(valueAt(registry, Hive::CurrentUser, {L"Software", L"Wine"}, L"Version")),
            L"win7");
}

TEST(WineRegFile, LinkReadsAsItsTarget) {
  Registry registry;
  mergeWineRegFile(registry, Hive::LocalMachine, fixture("system.reg"), "system.reg");
  const RegistryKey* link =
      registry.root(Hive::LocalMachine)
          .find({L"Software", L"Microsoft", L"Windows", L"CurrentVersion", L"Time Zones"});
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(link->value(L"SymbolicLinkValue"), nullptr);
  const RegistryKey* zone = link->subKey(L"pacific standard time");
  ASSERT_NE(zone, nullptr);
  EXPECT_EQ(text(*zone->value(L"Display")), L"(UTC-08:00) Pacific Time (US & Canada)");

  // A CurrentControlSet that links to ControlSet001, written before its target.
  std::string controlSet =
      kHeader + "[System\\\\CurrentControlSet] 1\n#link\n\"SymbolicLinkValue\"=hex(6):" +
      "5c,00,52,00,45,00,47,00,49,00,53,00,54,00,52,00,59,00,5c,00,4d,00,41,00,43,00,48,00,49,00,"
      "4e,00,45,00,5c,00,53,00,79,00,73,00,74,00,65,00,6d,00,5c,00,43,00,6f,00,6e,00,74,00,72,"
      "00,6f,00,6c,00,53,00,65,00,74,00,30,00,30,00,31,00\n"
      "[System\\\\ControlSet001\\\\Control\\\\ComputerName\\\\ComputerName] 1\n"
      "\"ComputerName\"=\"WKS-7\"\n"
      // One pointing into itself stays as it is.
      "[System\\\\Loop] 1\n#link\n\"SymbolicLinkValue\"=hex(6):5c,00,52,00,45,00,47,00,49,00,"
      "53,00,54,00,52,00,59,00,5c,00,4d,00,41,00,43,00,48,00,49,00,4e,00,45,00,5c,00,53,00,79,"
      "00,73,00,74,00,65,00,6d,00\n";
  Registry linked;
  mergeWineRegFile(linked, Hive::LocalMachine, controlSet, "system.reg");
  EXPECT_EQ(
      text(valueAt(linked, Hive::LocalMachine,
                   {L"System", L"CurrentControlSet", L"Control", L"ComputerName", L"ComputerName"},
                   L"ComputerName")),
      L"WKS-7");
  EXPECT_NE(linked.root(Hive::LocalMachine).find({L"System", L"Loop"})->value(L"SymbolicLinkValue"),
            nullptr);
}

TEST(WineRegFile, LinksCannotMultiplyTheFile) {
  // Two links to the level below on each level would double the keys at every level.
  std::string doubling = kHeader + "[K0] 1\n\"v\"=\"x\"\n";
  for (int level = 1; level <= 22; ++level)
    doubling += linkTo(level, "a", level - 1) + linkTo(level, "b", level - 1);
  EXPECT_NE(errorOf(doubling).find(": links copy more than 1048576 keys and values"),
            std::string::npos);
  // A chain of links, each into the one before, would nest keys deeper than Windows allows.
  std::string chain = kHeader + "[K0] 1\n";
  for (int level = 1; level <= 520; ++level) chain += linkTo(level, "l", level - 1);
  EXPECT_NE(errorOf(chain).find(": the link makes more than 512 levels of keys"),
            std::string::npos);
}

TEST(WineRegFile, ErrorsNameTheLine) {
  std::string deep = "[k";
  for (int i = 0; i < 512; ++i) deep += "\\\\k";
  const std::string key = "[A] 1\n";
  // What follows the header, and the message; "" for text that loads.
  const std::pair<std::string, std::string> kCases[] = {
      {"\"a\"=\"b\"\n", "3: a value needs a [key] line before it"},
      {key + "\"a\"=\"b\n", "4: missing the closing '\"'"},
      {"[A\\\\B 1\n", "3: missing the closing ']'"},
      {"[A\\\\\\\\B] 1\n", "3: empty key name"},
      {"[A] 1 x\n", "3: expected only a time stamp after the key"},
      {key + "\"a\"=dword:\n", "4: expected 1 to 8 hex digits after dword:"},
      {key + "\"a\"=dword:123456789\n", "4: unexpected text after the value"},
      // The line of a wrapped value is the one it starts on.
      {key + "\n\"a\"=hex:00,01,\\\n  02,zz\n", "5: expected a hex byte, 00 to ff, at hex byte 4"},
      {key + "\"a\"=hex:00,1g\n", "4: expected ',' after hex byte 2"},
      {key + "\"a\"=hex(7:00\n", "4: expected a hex type number and ')'"},
      {key + "\"a\"=str(2)\"x\"\n", "4: expected ':' after str(type)"},
      {key + "\"a\"=0\n", "4: expected \"text\", str(type):, dword:, hex: or hex(type): after '='"},
      {key + "\"a\" = \"b\"\n", "4: expected '=' after the value name"},
      {key + "stray\n", "4: expected [key], \"name\"=, @=, #option or a ; comment"},
      {key + "\"\xc3\x28\"=\"b\"\n", "4: not UTF-8 text"},
      {"[" + std::string(256, 'k') + "] 1\n", "3: a key name is at most 255 characters"},
      {key + "\"" + std::string(16384, 'v') + "\"=\"\"\n",
       "4: a value name is at most 16383 characters"},
      {deep + "] 1\n", "3: more than 512 levels of keys"},
      {key + "\"a\"=hex:\n@=dword:1\n", ""},
  };
  for (const auto& [text, message] : kCases)
    EXPECT_EQ(errorOf(kHeader + text), message.empty() ? "" : "system.reg:" + message) << text;
  EXPECT_EQ(errorOf("REGEDIT4\n"),
            "system.reg:1: expected \"WINE REGISTRY Version 2\" as the first line");
}

}  // namespace
}  // namespace winapi
