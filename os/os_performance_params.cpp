#include "os/os_performance_params.h"

#include "frame/procedure.h"
#include "os/os_names.h"

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <psapi.h>
// clang-format on

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

typedef BOOL(WINAPI* GetPerformanceInfoFunction)(PERFORMANCE_INFORMATION*, DWORD);

// Sizes the record gives in pages, reported in KiB.
const std::pair<const char*, SIZE_T PERFORMANCE_INFORMATION::*> kPageFigures[] = {
    {constants::kCommitTotal, &PERFORMANCE_INFORMATION::CommitTotal},
    {constants::kCommitLimit, &PERFORMANCE_INFORMATION::CommitLimit},
    {constants::kCommitPeak, &PERFORMANCE_INFORMATION::CommitPeak},
    {constants::kPhysicalTotal, &PERFORMANCE_INFORMATION::PhysicalTotal},
    {constants::kPhysicalAvailable, &PERFORMANCE_INFORMATION::PhysicalAvailable},
    {constants::kSystemCache, &PERFORMANCE_INFORMATION::SystemCache},
    {constants::kKernelTotal, &PERFORMANCE_INFORMATION::KernelTotal},
    {constants::kKernelPaged, &PERFORMANCE_INFORMATION::KernelPaged},
    {constants::kKernelNonpaged, &PERFORMANCE_INFORMATION::KernelNonpaged},
};

// The performance information exists from 5.1 on.
bool hasPerformanceInformation() {
  OSVERSIONINFOEXA wanted = {};
  wanted.dwOSVersionInfoSize = sizeof wanted;
  wanted.dwMajorVersion = 5;
  wanted.dwMinorVersion = 1;
  ULONGLONG condition = VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL);
  condition = VerSetConditionMask(condition, VER_MINORVERSION, VER_GREATER_EQUAL);
  return VerifyVersionInfoA(&wanted, VER_MAJORVERSION | VER_MINORVERSION, condition) != FALSE;
}

PropertyMap performanceProperties(const PERFORMANCE_INFORMATION& info) {
  PropertyMap values = {
      {constants::kHandleCount, TCIMValue(static_cast<unsigned int>(info.HandleCount))},
      {constants::kProcessCount, TCIMValue(static_cast<unsigned int>(info.ProcessCount))},
      {constants::kThreadCount, TCIMValue(static_cast<unsigned int>(info.ThreadCount))},
      {constants::kPageSize, TCIMValue(static_cast<unsigned int>(info.PageSize))}};
  for (const auto& figure : kPageFigures) {
    // Formed in 64 bits, then cut to the 32 bits of the property.
    const unsigned long long bytes =
        static_cast<unsigned long long>(info.*figure.second) * info.PageSize;
    values[figure.first] = TCIMValue(static_cast<unsigned int>(bytes >> 10));
  }
  return values;
}

}  // namespace

PropertyMap OSPerformanceParams::getPerformanceProperties() {
  if (!hasPerformanceInformation()) return PropertyMap();
  HMODULE psapi = LoadLibraryExA("psapi.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (!psapi) return PropertyMap();
  PropertyMap values;
  auto getPerformanceInfo = procedure<GetPerformanceInfoFunction>(psapi, "GetPerformanceInfo");
  PERFORMANCE_INFORMATION info = {};
  info.cb = sizeof info;
  if (getPerformanceInfo && getPerformanceInfo(&info, sizeof info))
    values = performanceProperties(info);
  FreeLibrary(psapi);
  return values;
}

}  // namespace installedapps_col
