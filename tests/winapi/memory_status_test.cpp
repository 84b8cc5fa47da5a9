#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_machine.h"
#include "winapi/include/psapi.h"
#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

using nlohmann::json;

namespace {

const char* const kFigures = R"({
    "system": {"pageSize": 8192},
    "memory": {"memoryLoad": 41, "totalPhys": 8589934592, "availPhys": 5068718080,
               "totalPageFile": 17179869184, "availPageFile": 12884901888,
               "totalVirtual": 140737488224256, "availVirtual": 140737400000000},
    "performance": {"commitTotal": 1000000, "commitLimit": 4000000, "commitPeak": 1200000,
                    "physicalTotal": 2097152, "physicalAvailable": 1237480, "systemCache": 600000,
                    "kernelTotal": 90000, "kernelPaged": 60000, "kernelNonpaged": 30000,
                    "pageSize": 4096, "handleCount": 31000, "processCount": 120,
                    "threadCount": 1500}})";

MEMORYSTATUSEX sentinelStatus(DWORD length) {
  MEMORYSTATUSEX status;
  std::memset(&status, 0xAB, sizeof status);
  status.dwLength = length;
  return status;
}

PERFORMANCE_INFORMATION sentinelInformation() {
  PERFORMANCE_INFORMATION info;
  std::memset(&info, 0xAB, sizeof info);
  info.cb = sizeof info;
  return info;
}

using GetPerformanceInfoFunction = BOOL (*)(PPERFORMANCE_INFORMATION, DWORD);

// As the collector finds it: psapi loaded at run time.
GetPerformanceInfoFunction findGetPerformanceInfo(HMODULE psapi) {
  return reinterpret_cast<GetPerformanceInfoFunction>(
      reinterpret_cast<void (*)()>(GetProcAddress(psapi, "GetPerformanceInfo")));
}

TEST(MemoryStatus, GlobalMemoryStatusExGivesTheMachinesBytes) {
  CurrentMachine machine(json::parse(kFigures));
  MEMORYSTATUSEX status = sentinelStatus(sizeof status);
  ASSERT_TRUE(GlobalMemoryStatusEx(&status));
  EXPECT_EQ(status.dwLength, 64u);
  EXPECT_EQ(status.dwMemoryLoad, 41u);
  EXPECT_EQ(status.ullTotalPhys, 8589934592u);
  EXPECT_EQ(status.ullAvailPhys, 5068718080u);
  EXPECT_EQ(status.ullTotalPageFile, 17179869184u);
  EXPECT_EQ(status.ullAvailPageFile, 12884901888u);
  EXPECT_EQ(status.ullTotalVirtual, 140737488224256u);
  EXPECT_EQ(status.ullAvailVirtual, 140737400000000u);
  EXPECT_EQ(status.ullAvailExtendedVirtual, 0u);
}

TEST(MemoryStatus, GlobalMemoryStatusExChecksTheLengthAndTheMachine) {
  {
    CurrentMachine machine(json::parse(kFigures));
    for (DWORD length : {0u, 32u, 63u, 65u}) {
      MEMORYSTATUSEX status = sentinelStatus(length);
      EXPECT_FALSE(GlobalMemoryStatusEx(&status)) << length;
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
      EXPECT_EQ(status.ullTotalPhys, 0xABABABABABABABABu);
    }
    EXPECT_FALSE(GlobalMemoryStatusEx(nullptr));
  }
  {
    // The load, when the machine leaves it out, is the part of the memory in use.
    CurrentMachine machine(json::parse(R"({"memory": {"totalPhys": 1000, "availPhys": 251}})"));
    MEMORYSTATUSEX status = sentinelStatus(sizeof status);
    ASSERT_TRUE(GlobalMemoryStatusEx(&status));
    EXPECT_EQ(status.dwMemoryLoad, 74u);
    EXPECT_EQ(status.ullTotalVirtual, 0u);
  }
  CurrentMachine machine(json::object());
  MEMORYSTATUSEX status = sentinelStatus(sizeof status);
  EXPECT_FALSE(GlobalMemoryStatusEx(&status));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
  EXPECT_EQ(status.dwMemoryLoad, 0xABABABABu);
}

TEST(MemoryStatus, GetPerformanceInfoGivesPagesThroughPsapi) {
  CurrentMachine machine(json::parse(kFigures));
  HMODULE psapi = LoadLibraryExA("psapi.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  ASSERT_NE(psapi, nullptr);
  GetPerformanceInfoFunction getPerformanceInfo = findGetPerformanceInfo(psapi);
  ASSERT_NE(getPerformanceInfo, nullptr);

  PERFORMANCE_INFORMATION info = sentinelInformation();
  ASSERT_TRUE(getPerformanceInfo(&info, 104));
  EXPECT_EQ(info.cb, 104u);
  EXPECT_EQ(info.CommitTotal, 1000000u);
  EXPECT_EQ(info.CommitLimit, 4000000u);
  EXPECT_EQ(info.CommitPeak, 1200000u);
  EXPECT_EQ(info.PhysicalTotal, 2097152u);
  EXPECT_EQ(info.PhysicalAvailable, 1237480u);
  EXPECT_EQ(info.SystemCache, 600000u);
  EXPECT_EQ(info.KernelTotal, 90000u);
  EXPECT_EQ(info.KernelPaged, 60000u);
  EXPECT_EQ(info.KernelNonpaged, 30000u);
  EXPECT_EQ(info.PageSize, 4096u);
  EXPECT_EQ(info.HandleCount, 31000u);
  EXPECT_EQ(info.ProcessCount, 120u);
  EXPECT_EQ(info.ThreadCount, 1500u);

  // A record shorter than Windows' own is refused untouched.
  info = sentinelInformation();
  EXPECT_FALSE(getPerformanceInfo(&info, 103));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_LENGTH));
  EXPECT_EQ(info.CommitTotal, 0xABABABABABABABABu);
  EXPECT_TRUE(FreeLibrary(psapi));
}

TEST(MemoryStatus, GetPerformanceInfoFallsBackToTheSystemPageSize) {
  {
    CurrentMachine machine(json::parse(R"({"system": {"pageSize": 8192},
        "performance": {"commitTotal": 5}})"));
    PERFORMANCE_INFORMATION info = sentinelInformation();
    ASSERT_TRUE(GetPerformanceInfo(&info, sizeof info));
    EXPECT_EQ(info.PageSize, 8192u);
    EXPECT_EQ(info.CommitTotal, 5u);
    EXPECT_EQ(info.HandleCount, 0u);
  }
  CurrentMachine machine(json{{"system", {{"pageSize", 8192}}}});
  PERFORMANCE_INFORMATION info = sentinelInformation();
  EXPECT_FALSE(GetPerformanceInfo(&info, sizeof info));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
  EXPECT_EQ(info.PageSize, 0xABABABABABABABABu);
}

TEST(MemoryStatus, FaultsReachBothCalls) {
  json description = json::parse(kFigures);
  description["missing"] = {"psapi.dll!GetPerformanceInfo"};
  description["fail"] = {{"GlobalMemoryStatusEx", 0}, {"GetPerformanceInfo", {{"lastError", 8}}}};
  CurrentMachine machine(description);
  HMODULE psapi = LoadLibraryExA("psapi.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  EXPECT_EQ(findGetPerformanceInfo(psapi), nullptr);
  EXPECT_TRUE(FreeLibrary(psapi));

  MEMORYSTATUSEX status = sentinelStatus(sizeof status);
  EXPECT_FALSE(GlobalMemoryStatusEx(&status));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  EXPECT_EQ(status.ullTotalPhys, 0xABABABABABABABABu);
  PERFORMANCE_INFORMATION info = sentinelInformation();
  EXPECT_FALSE(GetPerformanceInfo(&info, sizeof info));
  EXPECT_EQ(GetLastError(), 8u);
}

std::string descriptionError(const char* text) {
  try {
    winapi::Machine::fromDescription(json::parse(text));
  } catch (const winapi::MachineError& error) {
    return error.what();
  }
  return "loaded";
}

TEST(MachineFigures, MustFitTheirFields) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"performance": {"handleCount": 4294967296}})", "member performance.handleCount"},
      {R"({"performance": {"threadCount": -1}})", "member performance.threadCount"},
      {R"({"uptimeSeconds": 9223372036854775808})", "member uptimeSeconds"},
      {R"({"version": {"servicePackMajor": 65536}})", "member version.servicePackMajor"},
      {R"({"system": {"numberOfProcessors": 0}})", "member system.numberOfProcessors"},
  };
  for (const auto& [text, member] : cases)
    EXPECT_NE(descriptionError(text).find(member), std::string::npos) << text;
  EXPECT_EQ(descriptionError(R"({"performance": {"commitTotal": 18446744073709551615}})"),
            "loaded");
}

}  // namespace
