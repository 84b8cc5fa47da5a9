#include <gtest/gtest.h>

#include <tuple>

#include "os/memory_utilization.h"
#include "os/os_performance_params.h"
#include "tests/os/os_test_machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Figures = std::map<std::string, unsigned long long>;

Figures figures(const PropertyMap& values) {
  Figures result;
  for (const auto& value : values) result[value.first] = value.second.GetUnsigned();
  return result;
}

class SystemFigures : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  LogCapture log;
};

TEST_F(SystemFigures, MemoryIsReportedInWholeKibibytesWithoutWrapping) {
  nlohmann::json machine = windows7();
  machine["memory"] = {{"memoryLoad", 41},
                       {"totalPhys", 8589934592ULL},
                       {"availPhys", 1023},
                       {"totalPageFile", 5497558138880ULL},  // 5 TiB
                       {"availPageFile", 2047},
                       {"totalVirtual", 140737488224256ULL},
                       {"availVirtual", 140737400000000ULL}};
  OsMachine current(machine);
  const PropertyMap values = MemoryUtilization().getMemoryProperties();
  EXPECT_EQ(figures(values), (Figures{{"FreePhysicalMemory", 0},
                                      {"FreeSpaceInPagingFiles", 1},
                                      {"FreeVirtualMemory", 137438867187},
                                      {"MemoryLoad", 41},
                                      {"SizeStoredInPagingFiles", 5368709120},
                                      {"TotalVirtualMemorySize", 137438953344},
                                      {"TotalVisibleMemorySize", 8388608}}));
  EXPECT_EQ(values.at("MemoryLoad").GetType(), CIM_UINT32);
  EXPECT_EQ(values.at("SizeStoredInPagingFiles").GetType(), CIM_UINT64);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(SystemFigures, PerformanceSizesAreKibibytesAndThePageSizeIsBytes) {
  nlohmann::json machine = windows7();
  machine["performance"]["physicalTotal"] = 1073741824ULL;  // 4 TiB of pages: wraps to 0
  machine["performance"]["kernelNonpaged"] = 1073741825ULL;
  OsMachine current(machine);
  const PropertyMap values = OSPerformanceParams().getPerformanceProperties();
  EXPECT_EQ(figures(values), (Figures{{"CommitLimit", 16000000},
                                      {"CommitPeak", 4800000},
                                      {"CommitTotal", 4000000},
                                      {"HandleCount", 31000},
                                      {"KernelNonpaged", 4},
                                      {"KernelPaged", 240000},
                                      {"KernelTotal", 360000},
                                      {"PageSize", 4096},
                                      {"PhysicalAvailable", 4949920},
                                      {"PhysicalTotal", 0},
                                      {"ProcessCount", 120},
                                      {"SystemCache", 2400000},
                                      {"ThreadCount", 1500}}));
  for (const auto& value : values) EXPECT_EQ(value.second.GetType(), CIM_UINT32) << value.first;
}

TEST_F(SystemFigures, PerformanceInformationNeedsVersion51AndEveryPieceOfPsapi) {
  const std::vector<std::tuple<const char*, nlohmann::json, size_t>> changes = {
      {"version", {{"major", 5}, {"minor", 0}, {"platformId", 2}}, 0},
      {"version", {{"major", 5}, {"minor", 1}, {"platformId", 2}}, 13},
      {"version", {{"major", 10}, {"minor", 0}, {"platformId", 2}}, 13},
      {"missing", {"psapi.dll"}, 0},
      {"missing", {"psapi.dll!GetPerformanceInfo"}, 0},
      {"fail", {{"GetPerformanceInfo", 0}}, 0},
  };
  for (const auto& change : changes) {
    SCOPED_TRACE(std::get<1>(change).dump());
    nlohmann::json machine = windows7();
    machine[std::get<0>(change)] = std::get<1>(change);
    OsMachine current(machine);
    EXPECT_EQ(OSPerformanceParams().getPerformanceProperties().size(), std::get<2>(change));
  }
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace installedapps_col
