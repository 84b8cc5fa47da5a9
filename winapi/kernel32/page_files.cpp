// The machine's page files (machine.json "pageFiles": NT path names, sizes in pages) as psapi's
// EnumPageFilesA and ntdll's ZwQuerySystemInformation(SystemPageFileInformation) give them.
// Without "pageFiles" the machine has no page file: both calls succeed with nothing.
#include <cstring>
#include <string>
#include <vector>

#include "winapi/include/psapi.h"
#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"

namespace {

constexpr ULONG kSystemPageFileInformation = 18;
constexpr LONG kStatusSuccess = 0;
constexpr LONG kStatusDatatypeMisalignment = static_cast<LONG>(0x80000002);
constexpr LONG kStatusInvalidInfoClass = static_cast<LONG>(0xC0000003);
constexpr LONG kStatusInfoLengthMismatch = static_cast<LONG>(0xC0000004);
constexpr LONG kStatusAccessViolation = static_cast<LONG>(0xC0000005);

// The system keeps these counts in 32 bits.
struct PageFile {
  std::string name;  // UTF-8, "\??\C:\pagefile.sys"
  ULONG totalSize;
  ULONG totalInUse;
  ULONG peakUsage;
};

std::vector<PageFile> pageFiles() {
  const nlohmann::json& description = winapi::currentMachine().description();
  std::vector<PageFile> files;
  if (!description.contains("pageFiles")) return files;
  for (const nlohmann::json& entry : description["pageFiles"])
    files.push_back({entry.value("name", ""), static_cast<ULONG>(entry.value("totalSize", 0ull)),
                     static_cast<ULONG>(entry.value("totalInUse", 0ull)),
                     static_cast<ULONG>(entry.value("peakUsage", 0ull))});
  return files;
}

// EnumPageFiles names a page file from its drive letter on, as Windows does: the character
// before the first colon ("\??\C:\pagefile.sys" -> "C:\pagefile.sys").
std::string win32Name(const std::string& ntName) {
  std::size_t colon = ntName.find(':');
  return colon == std::string::npos || colon == 0 ? ntName : ntName.substr(colon - 1);
}

// SYSTEM_PAGEFILE_INFORMATION: the record, then its name, each record on an 8-byte boundary.
struct UnicodeString {
  WORD Length;  // bytes, without the terminator
  WORD MaximumLength;
  WCHAR* Buffer;
};

struct PageFileRecord {
  ULONG NextEntryOffset;
  ULONG TotalSize;
  ULONG TotalInUse;
  ULONG PeakUsage;
  UnicodeString PageFileName;
};

// The longest name whose length in bytes, with its terminator, fits a WORD.
constexpr std::size_t kMaxNameCharacters = 0xFFFF / sizeof(WCHAR) - 1;

struct NativeEntry {
  const PageFile* file;
  std::wstring name;
  std::size_t size;  // of record and name, rounded up to 8 bytes
};

std::vector<NativeEntry> nativeEntries(const std::vector<PageFile>& files) {
  std::vector<NativeEntry> entries;
  for (const PageFile& file : files) {
    std::wstring name = winapi::utf8ToWide(file.name).substr(0, kMaxNameCharacters);
    std::size_t size = sizeof(PageFileRecord) + (name.size() + 1) * sizeof(WCHAR);
    entries.push_back({&file, name, (size + 7) & ~std::size_t{7}});
  }
  return entries;
}

void writeEntries(const std::vector<NativeEntry>& entries, unsigned char* buffer) {
  std::size_t offset = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const NativeEntry& entry = entries[i];
    auto* name = reinterpret_cast<WCHAR*>(buffer + offset + sizeof(PageFileRecord));
    std::memcpy(name, entry.name.c_str(), (entry.name.size() + 1) * sizeof(WCHAR));
    WORD length = static_cast<WORD>(entry.name.size() * sizeof(WCHAR));
    PageFileRecord record{i + 1 < entries.size() ? static_cast<ULONG>(entry.size) : 0,
                          entry.file->totalSize,
                          entry.file->totalInUse,
                          entry.file->peakUsage,
                          {length, static_cast<WORD>(length + sizeof(WCHAR)), name}};
    std::memcpy(buffer + offset, &record, sizeof record);
    offset += entry.size;
  }
}

}  // namespace

// The callback's FALSE ends the enumeration; the call still succeeds.
extern "C" BOOL WINAPI EnumPageFilesA(PENUM_PAGE_FILE_CALLBACKA pCallBackRoutine, LPVOID pContext) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("EnumPageFilesA", Reports::ThroughLastError)) return *failed;
  if (!pCallBackRoutine) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  unsigned codePage = currentMachine().ansiCodePage();
  for (const PageFile& file : pageFiles()) {
    ENUM_PAGE_FILE_INFORMATION info{sizeof info, 0, file.totalSize, file.totalInUse,
                                    file.peakUsage};
    std::string name = utf8ToCodePage(codePage, win32Name(file.name));
    if (!pCallBackRoutine(pContext, &info, name.c_str())) break;
  }
  return TRUE;
}

// Only SystemPageFileInformation (18) is answered. A short buffer gets
// STATUS_INFO_LENGTH_MISMATCH and *ReturnLength the size needed; no page file gives success
// with a length of 0 and the buffer untouched.
extern "C" LONG WINAPI ZwQuerySystemInformation(ULONG SystemInformationClass,
                                                PVOID SystemInformation,
                                                ULONG SystemInformationLength,
                                                PULONG ReturnLength) {
  using namespace winapi;
  if (auto failed = injected<LONG>("ZwQuerySystemInformation", Reports::ByReturnValue))
    return *failed;
  if (SystemInformationClass != kSystemPageFileInformation) return kStatusInvalidInfoClass;
  if (SystemInformationLength != 0 && reinterpret_cast<std::uintptr_t>(SystemInformation) % 4)
    return kStatusDatatypeMisalignment;
  std::vector<PageFile> files = pageFiles();
  std::vector<NativeEntry> entries = nativeEntries(files);
  std::size_t needed = 0;
  for (const NativeEntry& entry : entries) needed += entry.size;
  if (ReturnLength) *ReturnLength = static_cast<ULONG>(needed);
  if (SystemInformationLength < needed) return kStatusInfoLengthMismatch;
  if (needed != 0 && !SystemInformation) return kStatusAccessViolation;
  writeEntries(entries, static_cast<unsigned char*>(SystemInformation));
  return kStatusSuccess;
}
