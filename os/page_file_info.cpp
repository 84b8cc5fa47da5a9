#include "os/page_file_info.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "frame/frame_texts.h"
#include "frame/narrow_text.h"
#include "frame/procedure.h"
#include "frame/schema_names.h"
#include "os/os_names.h"

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <psapi.h>
// clang-format on

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr ULONG kSystemPageFileInformation = 18;
constexpr LONG kStatusInfoLengthMismatch = static_cast<LONG>(0xC0000004);
constexpr ULONG kBufferStep = 65536;

typedef BOOL(WINAPI* EnumPageFilesFunction)(PENUM_PAGE_FILE_CALLBACKA, LPVOID);
typedef BOOL(WINAPI* GetPerformanceInfoFunction)(PPERFORMANCE_INFORMATION, DWORD);
typedef LONG(WINAPI* QuerySystemInformationFunction)(ULONG, void*, ULONG, ULONG*);

// One entry of the native page-file list, laid out as the system writes it.
struct NativePageFileEntry {
  DWORD nextEntryOffset;
  DWORD totalSize;
  DWORD totalInUse;
  DWORD peakUsage;
  WORD nameLength;
  WORD nameMaximumLength;
  const WCHAR* name;
};

BOOL WINAPI addPageFile(LPVOID context, PENUM_PAGE_FILE_INFORMATION info, LPCSTR fileName) {
  if (info && fileName)
    static_cast<PageFileInfo::PageFileList*>(context)->insert({fileName, info->TotalSize});
  return TRUE;
}

// The native name of a page file is an NT path ("\??\C:\pagefile.sys").
std::string win32Path(const std::string& name) {
  const size_t prefix = name.find("\\??\\");
  return prefix == std::string::npos ? name : name.substr(prefix + 4);
}

// The entries of a buffer of `capacity` bytes; a walk that would leave the
// buffer ends there.
void addNativeEntries(const unsigned char* buffer, size_t capacity,
                      PageFileInfo::PageFileList& list) {
  for (size_t offset = 0; offset + sizeof(NativePageFileEntry) <= capacity;) {
    NativePageFileEntry entry;
    std::memcpy(&entry, buffer + offset, sizeof entry);
    if (entry.name) list.insert({win32Path(narrowString(entry.name)), entry.totalSize});
    if (entry.nextEntryOffset == 0) break;
    offset += entry.nextEntryOffset;
  }
}

PageFileInfo::PageFileList queryPagefileInfo() {
  PageFileInfo::PageFileList list;
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  auto query = ntdll ? procedure<QuerySystemInformationFunction>(ntdll, "ZwQuerySystemInformation")
                     : nullptr;
  if (!query) return list;
  std::unique_ptr<unsigned char[]> buffer;
  ULONG size = 0, capacity = 0;
  LONG status;
  do {
    // The call leaves the length it needs in `size`; the next pass asks
    // for a step more than that.
    size += kBufferStep;
    capacity = size;
    buffer.reset(new (std::nothrow) unsigned char[capacity]());
    if (!buffer) return list;
    status = query(kSystemPageFileInformation, buffer.get(), capacity, &size);
  } while (status == kStatusInfoLengthMismatch);
  // Only the bytes the call says it wrote hold records: none without a
  // page file.
  if (status == 0) addNativeEntries(buffer.get(), std::min(size, capacity), list);
  return list;
}

PageFileInfo::PageFileList getPagefileInfo(HMODULE psapi) {
  PageFileInfo::PageFileList list;
  auto enumPageFiles = procedure<EnumPageFilesFunction>(psapi, "EnumPageFilesA");
  if (!enumPageFiles) {
    LogMessage::getInstance()->logDebug(constants::kNoEnumPageFiles);
    return queryPagefileInfo();
  }
  enumPageFiles(addPageFile, &list);
  return list;
}

unsigned long long pageSizeOf(HMODULE psapi) {
  auto getPerformanceInfo = procedure<GetPerformanceInfoFunction>(psapi, "GetPerformanceInfo");
  if (!getPerformanceInfo) {
    SYSTEM_INFO system = {};
    GetSystemInfo(&system);
    return system.dwPageSize;
  }
  PERFORMANCE_INFORMATION performance = {};
  performance.cb = sizeof performance;
  return getPerformanceInfo(&performance, sizeof performance) ? performance.PageSize : 0;
}

}  // namespace

PropertyMap PageFileInfo::buildPageFileProperties(const std::string& name, unsigned long long pages,
                                                  unsigned long long pageSize) {
  const unsigned long long size = pages * pageSize;
  PropertyMap values = {{constants::kCreationClassName, TCIMValue(constants::kPageFileClass)},
                        {constants::kName, TCIMValue(name)}};
  if (size != 0) values[constants::kFileSize] = TCIMValue(size);
  return values;
}

int PageFileInfo::getCIMInstances() {
  const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> psapi(
      LoadLibraryExA("psapi.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), &FreeLibrary);
  if (!psapi) return 0;
  try {
    const PageFileList pages = getPagefileInfo(psapi.get());
    const unsigned long long pageSize = pageSizeOf(psapi.get());
    for (const auto& page : pages)
      buildCIMInstance(buildPageFileProperties(page.first, page.second, pageSize));
  } catch (const TVRXException& e) {
    logger->logDebug(std::string(constants::kPageFileErrorPrefix) +
                     constants::kErrorGeneratingInstances + " " +
                     std::to_string(e.GetStatusCode()));
  }
  return 0;
}

}  // namespace installedapps_col
