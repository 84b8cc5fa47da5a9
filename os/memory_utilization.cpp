#include "os/memory_utilization.h"

#include "frame/platform.h"
#include "os/os_names.h"

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

TCIMValue kibibytes(DWORDLONG bytes) {
  return TCIMValue(static_cast<unsigned long long>(bytes >> 10));
}

}  // namespace

PropertyMap MemoryUtilization::getMemoryProperties() {
  MEMORYSTATUSEX status = {};
  status.dwLength = sizeof status;
  if (!GlobalMemoryStatusEx(&status)) return PropertyMap();
  return {{constants::kMemoryLoad, TCIMValue(static_cast<unsigned int>(status.dwMemoryLoad))},
          {constants::kTotalVisibleMemorySize, kibibytes(status.ullTotalPhys)},
          {constants::kFreePhysicalMemory, kibibytes(status.ullAvailPhys)},
          {constants::kSizeStoredInPagingFiles, kibibytes(status.ullTotalPageFile)},
          {constants::kFreeSpaceInPagingFiles, kibibytes(status.ullAvailPageFile)},
          {constants::kTotalVirtualMemorySize, kibibytes(status.ullTotalVirtual)},
          {constants::kFreeVirtualMemory, kibibytes(status.ullAvailVirtual)}};
}

}  // namespace installedapps_col
