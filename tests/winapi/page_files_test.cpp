#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "frame/procedure.h"
#include "test_machine.h"
#include "winapi/include/psapi.h"
#include "winapi/include/windows.h"

namespace {

typedef BOOL(WINAPI* EnumPageFilesFunction)(PENUM_PAGE_FILE_CALLBACKA, LPVOID);
typedef LONG(WINAPI* QueryFunction)(ULONG, PVOID, ULONG, PULONG);

constexpr ULONG kPageFileClass = 18;
constexpr LONG kLengthMismatch = static_cast<LONG>(0xC0000004);

const char* const kTwoPageFiles = R"({"pageFiles": [
    {"name": "\\??\\C:\\pagefile.sys", "totalSize": 262144, "totalInUse": 1000, "peakUsage": 2000},
    {"name": "\\??\\D:\\Pagé.sys", "totalSize": 4096}]})";

// One entry as the native call lays it out (64-bit).
struct NativeEntry {
  ULONG nextEntryOffset;
  ULONG totalSize;
  ULONG totalInUse;
  ULONG peakUsage;
  WORD nameLength;
  WORD nameMaximumLength;
  const WCHAR* name;
};

struct Seen {
  std::string name;
  DWORD cb;
  SIZE_T totalSize, totalInUse, peakUsage;
};

struct Enumeration {
  std::vector<Seen> seen;
  std::size_t stopAfter = 100;
};

BOOL WINAPI collect(LPVOID context, PENUM_PAGE_FILE_INFORMATION info, LPCSTR name) {
  auto* enumeration = static_cast<Enumeration*>(context);
  enumeration->seen.push_back({name, info->cb, info->TotalSize, info->TotalInUse, info->PeakUsage});
  return enumeration->seen.size() < enumeration->stopAfter;
}

EnumPageFilesFunction enumPageFiles() {
  HMODULE psapi = LoadLibraryExA("psapi.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  auto function = installedapps_col::procedure<EnumPageFilesFunction>(psapi, "EnumPageFilesA");
  FreeLibrary(psapi);  // the test's machine keeps no count of its own
  return function;
}

QueryFunction query() {
  return installedapps_col::procedure<QueryFunction>(GetModuleHandleA("ntdll.dll"),
                                                     "ZwQuerySystemInformation");
}

TEST(PageFiles, EnumPageFilesGivesWin32NamesInTheAnsiCodePage) {
  CurrentMachine machine(nlohmann::json::parse(kTwoPageFiles));
  EnumPageFilesFunction enumerate = enumPageFiles();
  ASSERT_NE(enumerate, nullptr);
  Enumeration all;
  ASSERT_TRUE(enumerate(collect, &all));
  ASSERT_EQ(all.seen.size(), 2u);
  EXPECT_EQ(all.seen[0].name, "C:\\pagefile.sys");
  EXPECT_EQ(all.seen[0].cb, sizeof(ENUM_PAGE_FILE_INFORMATION));
  EXPECT_EQ(all.seen[0].totalSize, 262144u);
  EXPECT_EQ(all.seen[0].totalInUse, 1000u);
  EXPECT_EQ(all.seen[0].peakUsage, 2000u);
  EXPECT_EQ(all.seen[1].name, "D:\\Pag\xE9.sys");
  EXPECT_EQ(all.seen[1].totalSize, 4096u);

  Enumeration first;
  first.stopAfter = 1;
  EXPECT_TRUE(enumerate(collect, &first));
  EXPECT_EQ(first.seen.size(), 1u);
  EXPECT_FALSE(enumerate(nullptr, &first));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(PageFiles, NativeQueryChainsRecordsInOneBuffer) {
  CurrentMachine machine(nlohmann::json::parse(kTwoPageFiles));
  QueryFunction call = query();
  ASSERT_NE(call, nullptr);
  alignas(8) unsigned char small[16];
  ULONG needed = 0;
  EXPECT_EQ(call(kPageFileClass, small, sizeof small, &needed), kLengthMismatch);
  ASSERT_GT(needed, sizeof small);

  std::vector<unsigned char> buffer(needed + 16, 0xAB);
  ULONG returned = 0;
  ASSERT_EQ(call(kPageFileClass, buffer.data(), needed, &returned), 0);
  EXPECT_EQ(returned, needed);
  EXPECT_EQ(buffer[needed], 0xAB);  // nothing written past what it needs

  std::vector<std::wstring> names;
  std::vector<ULONG> sizes;
  for (std::size_t offset = 0;;) {
    NativeEntry entry;
    std::memcpy(&entry, buffer.data() + offset, sizeof entry);
    names.emplace_back(entry.name, entry.nameLength / sizeof(WCHAR));
    EXPECT_EQ(entry.nameMaximumLength, entry.nameLength + sizeof(WCHAR));
    EXPECT_EQ(entry.name[entry.nameLength / sizeof(WCHAR)], L'\0');
    sizes.push_back(entry.totalSize);
    if (entry.nextEntryOffset == 0) break;
    EXPECT_EQ(entry.nextEntryOffset % 8, 0u);
    offset += entry.nextEntryOffset;
    ASSERT_LT(offset, needed);
  }
  EXPECT_EQ(names,
            (std::vector<std::wstring>{L"\\??\\C:\\pagefile.sys", L"\\??\\D:\\Pag\u00E9.sys"}));
  EXPECT_EQ(sizes, (std::vector<ULONG>{262144, 4096}));

  EXPECT_EQ(call(5, buffer.data(), needed, &returned), static_cast<LONG>(0xC0000003));
}

TEST(PageFiles, NoPageFileIsAnEmptyAnswer) {
  CurrentMachine machine(nlohmann::json::object());
  Enumeration none;
  EXPECT_TRUE(enumPageFiles()(collect, &none));
  EXPECT_TRUE(none.seen.empty());
  unsigned char buffer[64];
  std::memset(buffer, 0xAB, sizeof buffer);
  ULONG returned = 77;
  EXPECT_EQ(query()(kPageFileClass, buffer, sizeof buffer, &returned), 0);
  EXPECT_EQ(returned, 0u);
  EXPECT_EQ(buffer[0], 0xAB);
}

TEST(PageFiles, FaultsFollowTheMachine) {
  CurrentMachine machine(nlohmann::json::parse(
      R"({"missing": ["psapi.dll!EnumPageFilesA"], "fail": {"ZwQuerySystemInformation": "0xC0000001"}})"));
  EXPECT_EQ(enumPageFiles(), nullptr);
  EXPECT_EQ(query()(kPageFileClass, nullptr, 0, nullptr), static_cast<LONG>(0xC0000001));
}

}  // namespace
