// Memory figures: GlobalMemoryStatusEx from `memory` (bytes) and psapi's GetPerformanceInfo from
// `performance` (pages, as Windows counts them). A machine without the member does not say, and
// the call fails with ERROR_NOT_SUPPORTED, which no real Windows gives it.
#include <utility>

#include "winapi/include/psapi.h"
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine_figures.h"

static_assert(sizeof(MEMORYSTATUSEX) == 64, "MEMORYSTATUSEX as Windows lays it out");
static_assert(sizeof(PERFORMANCE_INFORMATION) == 104,
              "PERFORMANCE_INFORMATION as 64-bit Windows lays it out");

namespace {

const std::pair<const char*, DWORDLONG MEMORYSTATUSEX::*> kMemoryFigures[] = {
    {"totalPhys", &MEMORYSTATUSEX::ullTotalPhys},
    {"availPhys", &MEMORYSTATUSEX::ullAvailPhys},
    {"totalPageFile", &MEMORYSTATUSEX::ullTotalPageFile},
    {"availPageFile", &MEMORYSTATUSEX::ullAvailPageFile},
    {"totalVirtual", &MEMORYSTATUSEX::ullTotalVirtual},
    {"availVirtual", &MEMORYSTATUSEX::ullAvailVirtual},
};

const std::pair<const char*, SIZE_T PERFORMANCE_INFORMATION::*> kPageFigures[] = {
    {"commitTotal", &PERFORMANCE_INFORMATION::CommitTotal},
    {"commitLimit", &PERFORMANCE_INFORMATION::CommitLimit},
    {"commitPeak", &PERFORMANCE_INFORMATION::CommitPeak},
    {"physicalTotal", &PERFORMANCE_INFORMATION::PhysicalTotal},
    {"physicalAvailable", &PERFORMANCE_INFORMATION::PhysicalAvailable},
    {"systemCache", &PERFORMANCE_INFORMATION::SystemCache},
    {"kernelTotal", &PERFORMANCE_INFORMATION::KernelTotal},
    {"kernelPaged", &PERFORMANCE_INFORMATION::KernelPaged},
    {"kernelNonpaged", &PERFORMANCE_INFORMATION::KernelNonpaged},
};

const std::pair<const char*, DWORD PERFORMANCE_INFORMATION::*> kCounts[] = {
    {"handleCount", &PERFORMANCE_INFORMATION::HandleCount},
    {"processCount", &PERFORMANCE_INFORMATION::ProcessCount},
    {"threadCount", &PERFORMANCE_INFORMATION::ThreadCount},
};

// The percentage of physical memory in use, rounded down, as Windows gives it when the machine
// does not; 128-bit so that no size overflows.
DWORD memoryLoad(DWORDLONG total, DWORDLONG available) {
  if (total == 0 || available >= total) return 0;
  return static_cast<DWORD>(static_cast<unsigned __int128>(total - available) * 100 / total);
}

}  // namespace

extern "C" BOOL WINAPI GlobalMemoryStatusEx(LPMEMORYSTATUSEX lpBuffer) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GlobalMemoryStatusEx", Reports::ThroughLastError))
    return *failed;
  if (!lpBuffer || lpBuffer->dwLength != sizeof(MEMORYSTATUSEX)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const nlohmann::json* memory = machineFigure("memory");
  if (!memory) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
  }
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  for (const auto& [name, field] : kMemoryFigures)
    status.*field = memory->value(name, DWORDLONG{0});
  status.dwMemoryLoad =
      memory->value("memoryLoad", memoryLoad(status.ullTotalPhys, status.ullAvailPhys));
  *lpBuffer = status;
  return TRUE;
}

// psapi.dll's; the page size defaults to the system's.
extern "C" BOOL WINAPI GetPerformanceInfo(PPERFORMANCE_INFORMATION pPerformanceInformation,
                                          DWORD cb) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GetPerformanceInfo", Reports::ThroughLastError)) return *failed;
  if (cb < sizeof(PERFORMANCE_INFORMATION)) {
    SetLastError(ERROR_BAD_LENGTH);
    return FALSE;
  }
  if (!pPerformanceInformation) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const nlohmann::json* performance = machineFigure("performance");
  if (!performance) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
  }
  PERFORMANCE_INFORMATION info{};
  info.cb = sizeof info;
  for (const auto& [name, field] : kPageFigures) info.*field = performance->value(name, SIZE_T{0});
  info.PageSize = performance->value("pageSize", SIZE_T{machinePageSize()});
  for (const auto& [name, field] : kCounts) info.*field = performance->value(name, DWORD{0});
  *pPerformanceInformation = info;
  return TRUE;
}
