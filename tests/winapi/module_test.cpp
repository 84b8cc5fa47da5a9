#include <gtest/gtest.h>

#include "winapi/include/windows.h"

namespace {

DWORD errorOf(const void* result) { return result ? ERROR_SUCCESS : GetLastError(); }

TEST(Module, SystemDllsLoadUntilFreed) {
  HMODULE psapi = LoadLibraryExA("psapi", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  ASSERT_NE(psapi, nullptr);
  EXPECT_EQ(GetModuleHandleA("PSAPI.DLL"), psapi);
  EXPECT_EQ(LoadLibraryA("C:\\Windows\\System32\\Psapi.dll"), psapi);
  EXPECT_TRUE(FreeLibrary(psapi));
  EXPECT_EQ(GetModuleHandleA("psapi"), psapi);
  EXPECT_TRUE(FreeLibrary(psapi));
  // Unloaded: neither found by name nor usable by its old handle.
  EXPECT_EQ(errorOf(GetModuleHandleA("psapi")), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_EQ(errorOf(reinterpret_cast<void*>(GetProcAddress(psapi, "EnumPageFilesA"))),
            static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_FALSE(FreeLibrary(psapi));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST(Module, LoadRefusesUnknownDllsAndBadArguments) {
  const std::pair<const char*, DWORD> names[] = {
      {"nosuch.dll", ERROR_MOD_NOT_FOUND},
      {"psapi.", ERROR_MOD_NOT_FOUND},  // a trailing dot means "no extension"
      {nullptr, ERROR_INVALID_PARAMETER},
  };
  for (const auto& [name, error] : names) {
    EXPECT_EQ(errorOf(LoadLibraryExA(name, nullptr, 0)), error) << (name ? name : "null");
    EXPECT_EQ(errorOf(LoadLibraryA(name)), error);
  }
  EXPECT_EQ(errorOf(LoadLibraryExA("version", nullptr, 0x80000000)),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(errorOf(LoadLibraryExA("version", nullptr,
                                   LOAD_WITH_ALTERED_SEARCH_PATH | LOAD_LIBRARY_SEARCH_SYSTEM32)),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  int file = 0;
  EXPECT_EQ(errorOf(LoadLibraryExA("version", &file, 0)),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(Module, GetProcAddressFindsTheFunctionsOfThisLayer) {
  HMODULE kernel32 = GetModuleHandleA("KERNEL32");
  ASSERT_NE(kernel32, nullptr);
  EXPECT_NE(GetModuleHandleA(nullptr), nullptr);
  auto getComputerName = reinterpret_cast<BOOL (*)(LPSTR, LPDWORD)>(
      reinterpret_cast<void (*)()>(GetProcAddress(kernel32, "GetComputerNameA")));
  EXPECT_EQ(getComputerName, &GetComputerNameA);

  // Export names are compared exactly; the program itself exports nothing.
  EXPECT_EQ(errorOf(reinterpret_cast<void*>(GetProcAddress(kernel32, "getcomputernamea"))),
            static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
  EXPECT_EQ(errorOf(reinterpret_cast<void*>(GetProcAddress(nullptr, "GetComputerNameA"))),
            static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
  EXPECT_EQ(errorOf(reinterpret_cast<void*>(GetProcAddress(kernel32, reinterpret_cast<LPCSTR>(7)))),
            static_cast<DWORD>(ERROR_INVALID_ORDINAL));
}

TEST(Module, ForgedHandlesAreErrorsNotCrashes) {
  int notAModule = 0;
  HMODULE forged = reinterpret_cast<HMODULE>(&notAModule);
  EXPECT_EQ(errorOf(reinterpret_cast<void*>(GetProcAddress(forged, "GetLastError"))),
            static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_FALSE(FreeLibrary(forged));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_FALSE(FreeLibrary(nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  // A live handle of another kind is no module either.
  LPSTR text = nullptr;
  FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ALLOCATE_BUFFER, nullptr, 5, 0,
                 reinterpret_cast<LPSTR>(&text), 0, nullptr);
  EXPECT_FALSE(FreeLibrary(reinterpret_cast<HMODULE>(text)));
  EXPECT_EQ(LocalFree(text), nullptr);
}

}  // namespace
