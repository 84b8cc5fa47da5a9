#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "frame/procedure.h"
#include "test_machine.h"
#include "winapi/include/windows.h"

using nlohmann::json;

namespace {

const char* const kRegistry =
    "Windows Registry Editor Version 5.00\r\n\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor]\r\n"
    "\"Name\"=\"Caf\xC3\xA9\"\r\n"
    "\"Blob\"=hex:01,02,03\r\n"
    "\"Count\"=dword:0000002a\r\n"
    "\"Raw\"=hex(1):61,00,62,00\r\n"
    "\"List\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
    "@=\"default\"\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\b_key]\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\\xC3\xA9t\xC3\xA9]\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\Beta]\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\alpha]\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Vendor]\r\n"
    "\"Name\"=\"32-bit\"\r\n";

const LSTATUS kSuccess = ERROR_SUCCESS;

class Registry : public ::testing::Test {
 protected:
  void SetUp() override {
    dir.write("registry/10-test.reg", kRegistry);
    std::memset(buffer, '#', sizeof buffer);
  }
  // The machine, 32-bit on 64-bit Windows or not, with `extra` members.
  void makeMachine(bool wow64, json extra = json::object()) {
    extra["system"] = {{"wow64", wow64}};
    machine.reset();
    machine = std::make_unique<CurrentMachine>(extra, dir.path());
  }
  HKEY open(const char* path, REGSAM access = KEY_READ) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, access, &key), kSuccess) << path;
    return key;
  }
  // The "Name" value of the key `path` below `parent`, opened with `access`.
  std::string nameAt(const char* path, REGSAM access = KEY_READ, HKEY parent = HKEY_LOCAL_MACHINE) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(parent, path, 0, access, &key) != kSuccess) return "not opened";
    DWORD size = sizeof buffer;
    LSTATUS status = RegQueryValueExA(key, "Name", nullptr, nullptr, buffer, &size);
    RegCloseKey(key);
    return status == kSuccess ? std::string(reinterpret_cast<char*>(buffer), size - 1) : "failed";
  }

  TempDirectory dir;
  std::unique_ptr<CurrentMachine> machine;
  BYTE buffer[64];
};

TEST_F(Registry, QueryValueFollowsTheBufferRules) {
  makeMachine(false);
  HKEY key = open("software\\VENDOR");
  DWORD type = 0, size = 0;
  // A null buffer asks for the size: the ANSI text with its terminator.
  EXPECT_EQ(RegQueryValueExA(key, "NAME", nullptr, &type, nullptr, &size), kSuccess);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(size, 5u);
  size = 4;
  EXPECT_EQ(RegQueryValueExA(key, "Name", nullptr, nullptr, buffer, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(buffer[0], '#');
  size = 5;
  EXPECT_EQ(RegQueryValueExA(key, "Name", nullptr, nullptr, buffer, &size), kSuccess);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 6), std::string("Caf\xE9\0#", 6));

  // Text stored without a terminator: counted without one, given one when there is room.
  size = 2;
  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(RegQueryValueExA(key, "Raw", nullptr, nullptr, buffer, &size), kSuccess);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 3), "ab#");
  size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(key, "Raw", nullptr, nullptr, buffer, &size), kSuccess);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 4), std::string("ab\0#", 4));

  size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(key, "List", nullptr, &type, buffer, &size), kSuccess);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), size), std::string("a\0b\0\0", 5));
  size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(key, "Count", nullptr, &type, buffer, &size), kSuccess);
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), size), std::string("*\0\0\0", 4));
  for (const char* defaultName : {static_cast<const char*>(nullptr), ""}) {
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueExA(key, defaultName, nullptr, nullptr, buffer, &size), kSuccess);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "default");
  }

  std::memset(buffer, '#', sizeof buffer);
  size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(key, "Absent", nullptr, nullptr, buffer, &size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(RegQueryValueExA(key, "Name", nullptr, nullptr, buffer, nullptr),
            ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegCloseKey(key), kSuccess);
}

TEST_F(Registry, EnumerationSortsKeysByUpperCaseAndKeepsValuesInWrittenOrder) {
  makeMachine(false);
  HKEY key = open("SOFTWARE\\Vendor");
  EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr),
            kSuccess);
  DWORD subKeys = 0, longestSubKey = 0, values = 0, longestName = 0, longestData = 0;
  EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &subKeys, &longestSubKey, nullptr,
                             &values, &longestName, &longestData, nullptr, nullptr),
            kSuccess);
  EXPECT_EQ(std::vector<DWORD>({subKeys, longestSubKey, values, longestName, longestData}),
            std::vector<DWORD>({4, 5, 6, 5, 16}));

  // Upper-cased, '_' sorts after the letters; é after ASCII.
  std::vector<std::string> names;
  char name[16];
  DWORD size = 5;
  EXPECT_EQ(RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_MORE_DATA);
  EXPECT_EQ(size, 5u);
  for (DWORD index = 0;; ++index) {
    size = sizeof name;
    LSTATUS status = RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
    if (status != kSuccess) {
      EXPECT_EQ(status, ERROR_NO_MORE_ITEMS);
      break;
    }
    EXPECT_EQ(size, std::strlen(name));
    names.push_back(name);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"alpha", "Beta", "b_key", "\xE9t\xE9"}));

  names.clear();
  std::vector<DWORD> sizes;
  for (DWORD index = 0;; ++index) {
    DWORD nameSize = sizeof name, dataSize = sizeof buffer;
    LSTATUS status =
        RegEnumValueA(key, index, name, &nameSize, nullptr, nullptr, buffer, &dataSize);
    if (status == ERROR_NO_MORE_ITEMS) break;
    EXPECT_EQ(status, kSuccess);
    names.push_back(name);
    sizes.push_back(dataSize);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"Name", "Blob", "Count", "Raw", "List", ""}));
  EXPECT_EQ(sizes, (std::vector<DWORD>{5, 3, 4, 2, 5, 8}));

  // A short name buffer: nothing copied, the data size still reported.
  std::memset(name, '#', sizeof name);
  DWORD nameSize = 4, dataSize = sizeof buffer, type = 0;
  EXPECT_EQ(RegEnumValueA(key, 0, name, &nameSize, nullptr, &type, buffer, &dataSize),
            ERROR_MORE_DATA);
  EXPECT_EQ(std::vector<DWORD>({nameSize, dataSize, type}), std::vector<DWORD>({4, 5, REG_SZ}));
  EXPECT_EQ(name[0], '#');
  RegCloseKey(key);
}

TEST_F(Registry, HandlesAreCheckedAndNamesIgnoreCase) {
  makeMachine(false, json{{"fail", {{"RegEnumKeyExA", 5}}}});
  HKEY key = open("SOFTWARE\\Vendor\\\xC9T\xC9");  // ÉTÉ, for the key été
  HKEY again = nullptr;
  EXPECT_EQ(RegOpenKeyExA(key, "", 0, KEY_READ, &again), kSuccess);
  EXPECT_NE(again, key);
  EXPECT_EQ(RegCloseKey(key), kSuccess);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
  DWORD size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(key, "x", nullptr, nullptr, buffer, &size), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegQueryInfoKeyA(again, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr),
            kSuccess);
  EXPECT_EQ(RegCloseKey(again), kSuccess);
  EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), kSuccess);
  EXPECT_EQ(RegCloseKey(reinterpret_cast<HKEY>(buffer)), ERROR_INVALID_HANDLE);

  HKEY missing = reinterpret_cast<HKEY>(buffer);
  EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Nothing", 0, KEY_READ, &missing),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(missing, nullptr);
  EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "\\SOFTWARE", 0, KEY_READ, &missing),
            ERROR_BAD_PATHNAME);
  EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, "", 0, KEY_READ, &missing), ERROR_INVALID_HANDLE);

  // A handle may do only what it was opened for.
  HKEY listOnly = open("SOFTWARE\\Vendor", KEY_ENUMERATE_SUB_KEYS);
  size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(listOnly, "Name", nullptr, nullptr, buffer, &size),
            ERROR_ACCESS_DENIED);
  // An injected failure returns its value and does nothing.
  char name[16] = "#";
  size = sizeof name;
  EXPECT_EQ(RegEnumKeyExA(listOnly, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 5);
  EXPECT_EQ(size, static_cast<DWORD>(sizeof name));
  EXPECT_EQ(name[0], '#');
  RegCloseKey(listOnly);
}

TEST_F(Registry, Wow64RedirectsSoftwareBothWays) {
  makeMachine(false);
  EXPECT_EQ(nameAt("SOFTWARE\\Vendor"), "Caf\xE9");
  EXPECT_EQ(nameAt("SOFTWARE\\Vendor", KEY_READ | KEY_WOW64_32KEY), "32-bit");
  EXPECT_EQ(nameAt("SOFTWARE", KEY_WOW64_32KEY | KEY_WOW64_64KEY), "not opened");

  makeMachine(true);
  EXPECT_EQ(nameAt("SOFTWARE\\Vendor"), "32-bit");
  EXPECT_EQ(nameAt("SOFTWARE\\WOW6432Node\\Vendor"), "32-bit");
  EXPECT_EQ(nameAt("SOFTWARE\\Vendor", KEY_READ | KEY_WOW64_64KEY), "Caf\xE9");
  // The 32-bit view of SOFTWARE itself is WOW6432Node, and keys below it stay there.
  HKEY software = open("software");
  char sub[16];
  DWORD size = sizeof sub;
  EXPECT_EQ(RegEnumKeyExA(software, 0, sub, &size, nullptr, nullptr, nullptr, nullptr), kSuccess);
  EXPECT_STREQ(sub, "Vendor");
  EXPECT_EQ(RegEnumKeyExA(software, 1, sub, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(nameAt("Vendor", KEY_READ | KEY_WOW64_64KEY, software), "32-bit");
  RegCloseKey(software);
}

TEST_F(Registry, IsWow64ProcessIsReachedThroughTheExportTable) {
  typedef BOOL(WINAPI * IsWow64)(HANDLE, PBOOL);
  for (bool wow64 : {false, true}) {
    makeMachine(wow64);
    auto isWow64 =
        installedapps_col::procedure<IsWow64>(GetModuleHandleA("kernel32"), "IsWow64Process");
    ASSERT_NE(isWow64, nullptr);
    BOOL answer = 7;
    EXPECT_TRUE(isWow64(GetCurrentProcess(), &answer));
    EXPECT_EQ(answer, wow64 ? TRUE : FALSE);
    EXPECT_FALSE(isWow64(reinterpret_cast<HANDLE>(buffer), &answer));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  }
  makeMachine(true, json{{"missing", {"kernel32.dll!IsWow64Process"}}});
  EXPECT_EQ(GetProcAddress(GetModuleHandleA("kernel32"), "IsWow64Process"), nullptr);
}

}  // namespace
