#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/windows.h"

using nlohmann::json;

namespace {

const char* const kServer2003 = R"({"version": {"major": 5, "minor": 2, "build": 3790,
    "platformId": 2, "csdVersion": "Service Pack 2", "servicePackMajor": 2, "suiteMask": 18,
    "productType": 3}})";

const char* const kWindows7 = R"({"version": {"major": 6, "minor": 1, "build": 7601,
    "csdVersion": "Service Pack 1", "servicePackMajor": 1, "suiteMask": 256, "productType": 1,
    "productInfo": 48}})";

OSVERSIONINFOEXA sentinelRecord(DWORD size) {
  OSVERSIONINFOEXA info;
  std::memset(&info, 0xAB, sizeof info);
  info.dwOSVersionInfoSize = size;
  return info;
}

BOOL getVersion(OSVERSIONINFOEXA& info) {
  return GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(&info));
}

TEST(Version, GetVersionExAFillsEitherRecordAndNoMore) {
  CurrentMachine machine(json::parse(kServer2003));
  OSVERSIONINFOEXA info = sentinelRecord(sizeof(OSVERSIONINFOEXA));
  ASSERT_TRUE(getVersion(info));
  EXPECT_EQ(info.dwOSVersionInfoSize, 156u);
  EXPECT_EQ(info.dwMajorVersion, 5u);
  EXPECT_EQ(info.dwMinorVersion, 2u);
  EXPECT_EQ(info.dwBuildNumber, 3790u);
  EXPECT_EQ(info.dwPlatformId, static_cast<DWORD>(VER_PLATFORM_WIN32_NT));
  EXPECT_STREQ(info.szCSDVersion, "Service Pack 2");
  EXPECT_EQ(info.wServicePackMajor, 2);
  EXPECT_EQ(info.wServicePackMinor, 0);
  EXPECT_EQ(info.wSuiteMask, VER_SUITE_ENTERPRISE | 0x10);
  EXPECT_EQ(info.wProductType, VER_NT_SERVER);
  EXPECT_EQ(info.wReserved, 0);

  // The short record ends with szCSDVersion: the bytes after it are not the callee's.
  info = sentinelRecord(sizeof(OSVERSIONINFOA));
  ASSERT_TRUE(getVersion(info));
  EXPECT_EQ(info.dwOSVersionInfoSize, 148u);
  EXPECT_EQ(info.dwBuildNumber, 3790u);
  EXPECT_STREQ(info.szCSDVersion, "Service Pack 2");
  EXPECT_EQ(info.wServicePackMajor, 0xABAB);
  EXPECT_EQ(info.wProductType, 0xAB);
  EXPECT_EQ(info.wReserved, 0xAB);
}

TEST(Version, GetVersionExARefusesOtherSizesAndUndescribedMachines) {
  {
    CurrentMachine machine(json::parse(kServer2003));
    // 276 is the size of the wide record, OSVERSIONINFOW.
    for (DWORD size : {0u, 1u, 147u, 149u, 155u, 157u, 276u}) {
      OSVERSIONINFOEXA info = sentinelRecord(size);
      SetLastError(0);
      EXPECT_FALSE(getVersion(info)) << size;
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER)) << size;
      EXPECT_EQ(info.dwMajorVersion, 0xABABABABu) << size;
    }
    EXPECT_FALSE(GetVersionExA(nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  }
  CurrentMachine machine(json::object());
  OSVERSIONINFOEXA info = sentinelRecord(sizeof info);
  EXPECT_FALSE(getVersion(info));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
  EXPECT_EQ(info.dwMajorVersion, 0xABABABABu);
}

TEST(Version, CsdVersionIsInTheAnsiCodePageCutToWholeCharacters) {
  {
    CurrentMachine machine(json{{"version", {{"csdVersion", "Service Pack 1 \u00e9"}}}});
    OSVERSIONINFOEXA info = sentinelRecord(sizeof info);
    ASSERT_TRUE(getVersion(info));
    EXPECT_STREQ(info.szCSDVersion, "Service Pack 1 \xE9");
    // Members a machine leaves out: a workstation of the NT platform.
    EXPECT_EQ(info.dwPlatformId, static_cast<DWORD>(VER_PLATFORM_WIN32_NT));
    EXPECT_EQ(info.wProductType, VER_NT_WORKSTATION);
  }
  // 64 characters of two bytes each in code page 932: 63 fit before the terminator, and the
  // 64th must not leave half of itself behind.
  std::string hiragana;
  for (int i = 0; i < 64; ++i) hiragana += "\u3042";
  CurrentMachine machine(json{{"ansiCodePage", 932}, {"version", {{"csdVersion", hiragana}}}});
  OSVERSIONINFOEXA info = sentinelRecord(sizeof info);
  ASSERT_TRUE(getVersion(info));
  ASSERT_EQ(std::strlen(info.szCSDVersion), 126u);
  EXPECT_EQ(std::string(info.szCSDVersion + 124, 2), "\x82\xA0");
}

TEST(Version, VerSetConditionMaskPutsEachConditionInItsOwnBits) {
  ULONGLONG mask = VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL);
  EXPECT_EQ(mask, 0x18u);
  mask = VerSetConditionMask(mask, VER_MINORVERSION, VER_GREATER_EQUAL);
  EXPECT_EQ(mask, 0x1Bu);
  EXPECT_EQ(VerSetConditionMask(0, VER_PRODUCT_TYPE, VER_EQUAL), 1ull << 21);
  EXPECT_EQ(VerSetConditionMask(0, VER_SUITENAME, VER_OR), 7ull << 18);
  // Several types: only the highest is set. Conditions are masked to three bits, 0 sets
  // nothing, and a second condition for a type is added to the first, not put in its place.
  EXPECT_EQ(VerSetConditionMask(0, VER_MINORVERSION | VER_SERVICEPACKMAJOR, VER_LESS), 4ull << 15);
  EXPECT_EQ(VerSetConditionMask(0, VER_BUILDNUMBER, 0xF9), 1ull << 6);
  EXPECT_EQ(VerSetConditionMask(0x18, VER_MINORVERSION, 0), 0x18u);
  EXPECT_EQ(VerSetConditionMask(0x18, 0, VER_EQUAL), 0x18u);
  EXPECT_EQ(VerSetConditionMask(0x18, VER_MAJORVERSION, VER_LESS), 0x38u);
}

struct VersionTest {
  const char* what;
  DWORD types;
  DWORDLONG conditions;
  OSVERSIONINFOEXA wanted;
  DWORD error;  // ERROR_SUCCESS when the test passes
};

OSVERSIONINFOEXA wanted(DWORD major, DWORD minor, WORD servicePack = 0, DWORD build = 0,
                        WORD suites = 0, BYTE productType = 0) {
  OSVERSIONINFOEXA info{};
  info.dwOSVersionInfoSize = sizeof info;
  info.dwMajorVersion = major;
  info.dwMinorVersion = minor;
  info.wServicePackMajor = servicePack;
  info.dwBuildNumber = build;
  info.wSuiteMask = suites;
  info.wProductType = productType;
  return info;
}

DWORDLONG conditions(std::initializer_list<std::pair<DWORD, BYTE>> tests) {
  DWORDLONG mask = 0;
  for (auto [type, condition] : tests) mask = VerSetConditionMask(mask, type, condition);
  return mask;
}

TEST(Version, VerifyVersionInfoAComparesAsWindowsDoes) {
  CurrentMachine machine(json::parse(kWindows7));
  const DWORD kMajorMinor = VER_MAJORVERSION | VER_MINORVERSION;
  const DWORD kVersion = kMajorMinor | VER_SERVICEPACKMAJOR;
  const DWORDLONG kAtLeast = conditions({{VER_MAJORVERSION, VER_GREATER_EQUAL},
                                         {VER_MINORVERSION, VER_GREATER_EQUAL},
                                         {VER_SERVICEPACKMAJOR, VER_GREATER_EQUAL}});
  const DWORD kOld = ERROR_OLD_WIN_VERSION;
  const VersionTest cases[] = {
      {"at least 5.1", kMajorMinor, kAtLeast, wanted(5, 1), ERROR_SUCCESS},
      {"at least 6.1", kMajorMinor, kAtLeast, wanted(6, 1), ERROR_SUCCESS},
      {"a greater major decides alone", kMajorMinor, kAtLeast, wanted(5, 2), ERROR_SUCCESS},
      {"at least 6.2", kMajorMinor, kAtLeast, wanted(6, 2), kOld},
      {"at least 10.0", kMajorMinor, kAtLeast, wanted(10, 0), kOld},
      {"at least 6.1 SP1", kVersion, kAtLeast, wanted(6, 1, 1), ERROR_SUCCESS},
      {"at least 6.1 SP2", kVersion, kAtLeast, wanted(6, 1, 2), kOld},
      {"exactly 6.1 SP1", kVersion,
       conditions({{VER_MAJORVERSION, VER_EQUAL},
                   {VER_MINORVERSION, VER_EQUAL},
                   {VER_SERVICEPACKMAJOR, VER_EQUAL}}),
       wanted(6, 1, 1), ERROR_SUCCESS},
      {"greater than 6", VER_MAJORVERSION, conditions({{VER_MAJORVERSION, VER_GREATER}}),
       wanted(6, 0), kOld},
      {"less than 7", VER_MAJORVERSION, conditions({{VER_MAJORVERSION, VER_LESS}}), wanted(7, 0),
       ERROR_SUCCESS},
      {"a tested type without a condition", kMajorMinor,
       conditions({{VER_MAJORVERSION, VER_EQUAL}}), wanted(6, 1), kOld},
      {"build at least 7600", VER_BUILDNUMBER, conditions({{VER_BUILDNUMBER, VER_GREATER_EQUAL}}),
       wanted(0, 0, 0, 7600), ERROR_SUCCESS},
      {"build above 7601", VER_BUILDNUMBER, conditions({{VER_BUILDNUMBER, VER_GREATER}}),
       wanted(0, 0, 0, 7601), kOld},
      {"a workstation", VER_PRODUCT_TYPE, conditions({{VER_PRODUCT_TYPE, VER_EQUAL}}),
       wanted(0, 0, 0, 0, 0, VER_NT_WORKSTATION), ERROR_SUCCESS},
      {"a server", VER_PRODUCT_TYPE, conditions({{VER_PRODUCT_TYPE, VER_EQUAL}}),
       wanted(0, 0, 0, 0, 0, VER_NT_SERVER), kOld},
      {"all of one suite", VER_SUITENAME, conditions({{VER_SUITENAME, VER_AND}}),
       wanted(0, 0, 0, 0, VER_SUITE_SINGLEUSERTS), ERROR_SUCCESS},
      {"all of two suites", VER_SUITENAME, conditions({{VER_SUITENAME, VER_AND}}),
       wanted(0, 0, 0, 0, VER_SUITE_SINGLEUSERTS | VER_SUITE_PERSONAL), kOld},
      {"one of two suites", VER_SUITENAME, conditions({{VER_SUITENAME, VER_OR}}),
       wanted(0, 0, 0, 0, VER_SUITE_SINGLEUSERTS | VER_SUITE_PERSONAL), ERROR_SUCCESS},
      {"one of no suite", VER_SUITENAME, conditions({{VER_SUITENAME, VER_OR}}), wanted(0, 0),
       ERROR_SUCCESS},
      {"no type", 0, kAtLeast, wanted(5, 1), ERROR_BAD_ARGUMENTS},
      {"no condition", kMajorMinor, 0, wanted(5, 1), ERROR_BAD_ARGUMENTS},
      {"a suite compared as a number", VER_SUITENAME, conditions({{VER_SUITENAME, VER_EQUAL}}),
       wanted(0, 0, 0, 0, VER_SUITE_SINGLEUSERTS), ERROR_BAD_ARGUMENTS},
  };
  for (VersionTest test : cases) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(VerifyVersionInfoA(&test.wanted, test.types, test.conditions),
              test.error == ERROR_SUCCESS)
        << test.what;
    EXPECT_EQ(GetLastError(), test.error) << test.what;
  }
}

TEST(Version, VerifyVersionInfoANeedsAVersion) {
  CurrentMachine machine(json::object());
  OSVERSIONINFOEXA info = wanted(5, 1);
  EXPECT_FALSE(VerifyVersionInfoA(&info, VER_MAJORVERSION,
                                  conditions({{VER_MAJORVERSION, VER_GREATER_EQUAL}})));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

using GetProductInfoFunction = BOOL (*)(DWORD, DWORD, DWORD, DWORD, PDWORD);

GetProductInfoFunction findGetProductInfo() {
  return reinterpret_cast<GetProductInfoFunction>(reinterpret_cast<void (*)()>(
      GetProcAddress(GetModuleHandleA("kernel32.dll"), "GetProductInfo")));
}

TEST(Version, GetProductInfoAnswersFromVersion6On) {
  {
    CurrentMachine machine(json::parse(kWindows7));
    GetProductInfoFunction getProductInfo = findGetProductInfo();
    ASSERT_NE(getProductInfo, nullptr);
    DWORD type = 0xABABABAB;
    EXPECT_TRUE(getProductInfo(6, 1, 0, 0, &type));
    EXPECT_EQ(type, static_cast<DWORD>(PRODUCT_PROFESSIONAL));
    type = 0xABABABAB;
    EXPECT_FALSE(getProductInfo(5, 2, 0, 0, &type));
    EXPECT_EQ(type, static_cast<DWORD>(PRODUCT_UNDEFINED));
    EXPECT_FALSE(getProductInfo(6, 1, 0, 0, nullptr));
  }
  CurrentMachine machine(json::parse(kServer2003));
  DWORD type = 0xABABABAB;
  EXPECT_FALSE(GetProductInfo(6, 0, 0, 0, &type));
  EXPECT_EQ(type, static_cast<DWORD>(PRODUCT_UNDEFINED));
}

TEST(Version, FaultsReachEveryVersionCall) {
  json description = json::parse(kWindows7);
  description["missing"] = {"kernel32.dll!GetProductInfo"};
  description["fail"] = {{"GetVersionExA", {{"return", 0}, {"lastError", 5}}},
                         {"VerifyVersionInfoA", 0},
                         {"GetProductInfo", 0},
                         {"VerSetConditionMask", 0}};
  CurrentMachine machine(description);
  EXPECT_EQ(findGetProductInfo(), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));

  OSVERSIONINFOEXA info = sentinelRecord(sizeof info);
  EXPECT_FALSE(getVersion(info));
  EXPECT_EQ(GetLastError(), 5u);
  EXPECT_EQ(info.dwMajorVersion, 0xABABABABu);

  info = wanted(5, 1);
  EXPECT_FALSE(VerifyVersionInfoA(&info, VER_MAJORVERSION, 0x18));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  EXPECT_EQ(VerSetConditionMask(0x18, VER_MINORVERSION, VER_EQUAL), 0u);

  DWORD type = 0xABABABAB;
  EXPECT_FALSE(GetProductInfo(6, 1, 0, 0, &type));
  EXPECT_EQ(type, 0xABABABABu);
}

}  // namespace
