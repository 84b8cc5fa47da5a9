#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "test_machine.h"
#include "winapi/include/windows.h"

using nlohmann::json;

namespace {

SYSTEM_INFO systemInfo() {
  SYSTEM_INFO info;
  std::memset(&info, 0xAB, sizeof info);
  GetSystemInfo(&info);
  return info;
}

std::uintptr_t address(LPVOID pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

TEST(GetSystemInfo, DescribesAnX64ProcessWithOneProcessorByDefault) {
  CurrentMachine machine(json::object());
  SYSTEM_INFO info = systemInfo();
  EXPECT_EQ(info.wProcessorArchitecture, PROCESSOR_ARCHITECTURE_AMD64);
  EXPECT_EQ(info.dwProcessorType, static_cast<DWORD>(PROCESSOR_AMD_X8664));
  EXPECT_EQ(info.dwNumberOfProcessors, 1u);
  EXPECT_EQ(info.dwActiveProcessorMask, 1u);
  EXPECT_EQ(info.wProcessorLevel, 0);
  EXPECT_EQ(info.wProcessorRevision, 0);
}

TEST(GetSystemInfo, ReadsTheSystemAndTheProcessorVariables) {
  {
    CurrentMachine machine(json::parse(R"({
        "system": {"processorArchitecture": 6, "pageSize": 8192},
        "environment": {"NUMBER_OF_PROCESSORS": "8", "PROCESSOR_LEVEL": "31",
                        "PROCESSOR_REVISION": "9e0d"}})"));
    SYSTEM_INFO info = systemInfo();
    EXPECT_EQ(info.wProcessorArchitecture, PROCESSOR_ARCHITECTURE_IA64);
    EXPECT_EQ(info.dwProcessorType, static_cast<DWORD>(PROCESSOR_INTEL_IA64));
    EXPECT_EQ(info.dwPageSize, 8192u);
    EXPECT_EQ(info.dwNumberOfProcessors, 8u);
    EXPECT_EQ(info.dwActiveProcessorMask, 0xFFu);
    EXPECT_EQ(info.wProcessorLevel, 31);
    EXPECT_EQ(info.wProcessorRevision, 0x9E0D);
  }
  {
    // system.numberOfProcessors wins; one processor group holds at most 64.
    CurrentMachine machine(json::parse(R"({"system": {"numberOfProcessors": 96},
        "environment": {"NUMBER_OF_PROCESSORS": "8"}})"));
    SYSTEM_INFO info = systemInfo();
    EXPECT_EQ(info.dwNumberOfProcessors, 64u);
    EXPECT_EQ(info.dwActiveProcessorMask, ~DWORD_PTR{0});
  }
  // Variables that are no numbers of their kind count as absent.
  CurrentMachine machine(json::parse(R"({"environment": {"NUMBER_OF_PROCESSORS": "8 ",
      "PROCESSOR_LEVEL": "65536", "PROCESSOR_REVISION": "0x9e0d"}})"));
  SYSTEM_INFO info = systemInfo();
  EXPECT_EQ(info.dwNumberOfProcessors, 1u);
  EXPECT_EQ(info.wProcessorLevel, 0);
  EXPECT_EQ(info.wProcessorRevision, 0);
}

TEST(GetSystemInfo, A32BitProcessOn64BitWindowsSeesAnX86AndLessAddressSpace) {
  const LPVOID highest64 = [] {
    CurrentMachine native(json::parse(R"({"system": {"processorArchitecture": 9}})"));
    return systemInfo().lpMaximumApplicationAddress;
  }();
  CurrentMachine machine(json::parse(R"({"system": {"processorArchitecture": 9, "wow64": true,
      "numberOfProcessors": 48}})"));
  SYSTEM_INFO info = systemInfo();
  EXPECT_EQ(info.wProcessorArchitecture, PROCESSOR_ARCHITECTURE_INTEL);
  EXPECT_EQ(info.dwProcessorType, static_cast<DWORD>(PROCESSOR_INTEL_PENTIUM));
  EXPECT_LT(address(info.lpMaximumApplicationAddress), address(highest64));
  EXPECT_EQ(info.dwNumberOfProcessors, 32u);
  EXPECT_EQ(info.dwActiveProcessorMask, 0xFFFFFFFFu);
}

TEST(GetSystemInfo, FaultsLeaveTheRecordAlone) {
  CurrentMachine machine(json::parse(R"({"missing": ["kernel32.dll!GetSystemInfo"],
      "fail": {"GetSystemInfo": 0}})"));
  EXPECT_EQ(GetProcAddress(GetModuleHandleA("kernel32"), "GetSystemInfo"), nullptr);
  SYSTEM_INFO info = systemInfo();
  EXPECT_EQ(info.dwPageSize, 0xABABABABu);
  EXPECT_EQ(info.wProcessorArchitecture, 0xABAB);
}

}  // namespace
