#include <gtest/gtest.h>

#include <cstring>

#include "test_machine.h"
#include "winapi/include/windows.h"

namespace {

const char* const kFaults = R"({
    "missing": ["PSAPI", "kernel32.dll!GetComputerNameA"],
    "fail": {"GetComputerNameA": {"return": 0, "lastError": 5},
             "GetSystemDirectoryA": 0,
             "GetTimeZoneInformation": "0xFFFFFFFF",
             "SetErrorMode": 7,
             "LoadLibraryExA": 0},
    "timeZone": {"bias": 0}})";

TEST(Faults, MissingDllsAndExportsAreNotFound) {
  CurrentMachine machine(nlohmann::json::parse(kFaults));
  EXPECT_EQ(LoadLibraryA("psapi.dll"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_EQ(GetModuleHandleA("psapi"), nullptr);

  HMODULE kernel32 = GetModuleHandleA("kernel32.dll");
  EXPECT_EQ(GetProcAddress(kernel32, "GetComputerNameA"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
  EXPECT_NE(GetProcAddress(kernel32, "GetSystemWindowsDirectoryA"), nullptr);
}

TEST(Faults, FailingFunctionsReturnTheValueAndDoNothing) {
  CurrentMachine machine(nlohmann::json::parse(kFaults));
  char buffer[MAX_PATH];
  std::memset(buffer, '#', sizeof buffer);
  DWORD size = sizeof buffer;
  EXPECT_FALSE(GetComputerNameA(buffer, &size));
  EXPECT_EQ(GetLastError(), 5u);
  EXPECT_EQ(size, sizeof buffer);
  EXPECT_EQ(buffer[0], '#');

  // A plain number for a function that reports through GetLastError: ERROR_GEN_FAILURE.
  EXPECT_EQ(GetSystemDirectoryA(buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(LoadLibraryExA("version", nullptr, 0), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));

  TIME_ZONE_INFORMATION info;
  std::memset(&info, 0xAB, sizeof info);
  SetLastError(0);
  EXPECT_EQ(GetTimeZoneInformation(&info), TIME_ZONE_ID_INVALID);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  EXPECT_EQ(info.Bias, static_cast<LONG>(0xABABABAB));

  // A function whose result is the answer leaves the last error alone.
  SetLastError(1234);
  EXPECT_EQ(SetErrorMode(SEM_FAILCRITICALERRORS), 7u);
  EXPECT_EQ(GetLastError(), 1234u);

  // Functions without an entry work; LoadLibraryA is not LoadLibraryExA.
  HMODULE version = LoadLibraryA("version");
  EXPECT_NE(version, nullptr);
  EXPECT_TRUE(FreeLibrary(version));
}

}  // namespace
