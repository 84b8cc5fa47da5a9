#include "winapi/machine/hive_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "test_hive.h"
#include "test_machine.h"
#include "winapi/machine/machine.h"

namespace winapi {
using namespace std::string_literals;

namespace {

const char kSystem[] =
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\n\"Current\"=dword:00000002\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001]\n\"Which\"=\"one\"\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet002]\n\"Which\"=\"two\"\n\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet002\\Control]\n\"Deep\"=dword:00000007\n\n";

std::string text(const RegistryKey* key, const wchar_t* name) {
  const RegistryValue* value = key ? key->value(name) : nullptr;
  if (!value) return "<none>";
  std::wstring wide = fromUtf16Bytes(value->data);
  return std::string(wide.begin(), wide.begin() + wide.find(L'\0'));
}

TEST(HiveFile, KeysAndValuesKeepTheirTypesAndBytesAtTheirPlaces) {
  TempDirectory dir;
  std::string software = dir.path() + "/software";
  writeHive(software, "HKEY_LOCAL_MACHINE\\SOFTWARE",
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\n\"Name\"=\"Ab\"\n\"Count\"=dword:01020304\n"
            "\"Raw\"=hex:00,ff\n\"Path\"=hex(2):25,00,00,00\n\n"
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\Sub]\n@=\"default\"\n\n");
  Registry registry;
  ASSERT_TRUE(mountNamedHive(registry, software));
  const RegistryKey* vendor = registry.root(Hive::LocalMachine).find({L"SOFTWARE", L"VENDOR"});
  ASSERT_NE(vendor, nullptr);
  ASSERT_EQ(vendor->values().size(), 4u);
  const RegistryValue* name = vendor->value(L"name");
  EXPECT_EQ(name->type, 1u);
  EXPECT_EQ(name->data, std::string("A\0b\0\0\0", 6));
  EXPECT_EQ(vendor->value(L"Count")->type, 4u);
  EXPECT_EQ(vendor->value(L"Count")->data, "\x04\x03\x02\x01");
  EXPECT_EQ(vendor->value(L"Raw")->type, 3u);
  EXPECT_EQ(vendor->value(L"Raw")->data, std::string("\0\xff", 2));
  EXPECT_EQ(vendor->value(L"Path")->type, 2u);
  EXPECT_EQ(text(vendor->subKey(L"Sub"), L""), "default");

  std::string user = dir.path() + "/NTUSER.DAT";
  writeHive(user, "HKEY_CURRENT_USER", "[HKEY_CURRENT_USER\\Environment]\n\"TEMP\"=\"t\"\n\n");
  ASSERT_TRUE(mountNamedHive(registry, user));
  EXPECT_EQ(text(registry.root(Hive::CurrentUser).find({L"Environment"}), L"TEMP"), "t");
  EXPECT_FALSE(mountNamedHive(registry, dir.path() + "/SAM"));
}

TEST(HiveFile, CurrentControlSetIsTheOneSelectNames) {
  TempDirectory dir;
  std::string system = dir.path() + "/SYSTEM";
  writeHive(system, "HKEY_LOCAL_MACHINE\\SYSTEM", kSystem);
  Registry registry;
  ASSERT_TRUE(mountNamedHive(registry, system));
  const RegistryKey& machine = registry.root(Hive::LocalMachine);
  EXPECT_EQ(text(machine.find({L"SYSTEM", L"CurrentControlSet"}), L"Which"), "two");
  EXPECT_EQ(text(machine.find({L"SYSTEM", L"ControlSet001"}), L"Which"), "one");
  const RegistryKey* control = machine.find({L"SYSTEM", L"CurrentControlSet", L"Control"});
  ASSERT_NE(control, nullptr);
  EXPECT_EQ(control->value(L"Deep")->data, "\x07\0\0\0"s);
}

std::string errorOf(const std::string& file) {
  Registry registry;
  try {
    mountNamedHive(registry, file);
  } catch (const MachineError& error) {
    return error.what();
  }
  return "<no error>";
}

TEST(HiveFile, BrokenHivesNameTheirFile) {
  TempDirectory dir;
  std::string system = dir.path() + "/SYSTEM";
  writeHive(system, "HKEY_LOCAL_MACHINE\\SYSTEM", kSystem);
  std::ifstream in(system, std::ios::binary);
  std::string whole((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());

  dir.write("truncated/SYSTEM", whole.substr(0, whole.size() - 0x800));
  EXPECT_NE(errorOf(dir.path() + "/truncated/SYSTEM").find(dir.path() + "/truncated/SYSTEM: "),
            std::string::npos);
  dir.write("text/SOFTWARE", "REGEDIT4\n");
  EXPECT_EQ(errorOf(dir.path() + "/text/SOFTWARE").rfind(dir.path() + "/text/SOFTWARE: ", 0), 0u);
  std::string bent = whole;
  bent[0x1000 + 0x24] ^= 0x40;  // the root key's signature
  dir.write("bent/SYSTEM", bent);
  EXPECT_NE(errorOf(dir.path() + "/bent/SYSTEM"), "<no error>");
  EXPECT_EQ(errorOf(dir.path() + "/missing/BCD").rfind(dir.path() + "/missing/BCD: ", 0), 0u);
}

}  // namespace
}  // namespace winapi
