// The processors and address space the machine's process sees: GetSystemInfo, from `system` and
// from the variables Windows derives from the same figures (NUMBER_OF_PROCESSORS,
// PROCESSOR_LEVEL, PROCESSOR_REVISION). `system.processorArchitecture` is the machine's own; a
// 32-bit process on 64-bit Windows (`system.wow64`) sees an x86 processor and 2 GiB, as there.
#include <algorithm>
#include <charconv>
#include <optional>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/machine_figures.h"

static_assert(sizeof(SYSTEM_INFO) == 48, "SYSTEM_INFO as 64-bit Windows lays it out");

namespace {

constexpr WORD kDefaultArchitecture = PROCESSOR_ARCHITECTURE_AMD64;
constexpr DWORD kAllocationGranularity = 0x10000;
constexpr std::uintptr_t kLowestAddress = 0x10000;
constexpr std::uintptr_t kHighestAddress64 = 0x7FFFFFFEFFFF;
constexpr std::uintptr_t kHighestAddress32 = 0x7FFEFFFF;
// The processors of the caller's processor group: 64 at most, 32 for a 32-bit process.
constexpr DWORD kMostProcessors64 = 64;
constexpr DWORD kMostProcessors32 = 32;

struct Architecture {
  WORD id;
  DWORD processorType;
  bool is32Bit;
};

const Architecture kArchitectures[] = {
    {PROCESSOR_ARCHITECTURE_INTEL, PROCESSOR_INTEL_PENTIUM, true},
    {PROCESSOR_ARCHITECTURE_IA64, PROCESSOR_INTEL_IA64, false},
    {PROCESSOR_ARCHITECTURE_AMD64, PROCESSOR_AMD_X8664, false},
};

// Architectures without a row (ARM …) keep their number, with no processor type.
Architecture architectureOf(WORD id) {
  for (const Architecture& architecture : kArchitectures)
    if (architecture.id == id) return architecture;
  return {id, 0, false};
}

// The variable as a whole number in `base` no greater than `most`, else nullopt.
std::optional<unsigned long> environmentNumber(const char* name, int base, unsigned long most) {
  const auto* variable = winapi::currentMachine().environment().find(name);
  if (!variable || variable->value.empty()) return std::nullopt;
  const char* first = variable->value.data();
  const char* last = first + variable->value.size();
  unsigned long number = 0;
  auto [end, error] = std::from_chars(first, last, number, base);
  if (error != std::errc() || end != last || number > most) return std::nullopt;
  return number;
}

DWORD processorCount(const nlohmann::json& system, bool is32Bit) {
  DWORD count = system.value(
      "numberOfProcessors",
      static_cast<DWORD>(environmentNumber("NUMBER_OF_PROCESSORS", 10, 0xFFFFFFFF).value_or(1)));
  return std::clamp<DWORD>(count, 1, is32Bit ? kMostProcessors32 : kMostProcessors64);
}

DWORD_PTR processorMask(DWORD count) {
  return count >= 64 ? ~DWORD_PTR{0} : (DWORD_PTR{1} << count) - 1;
}

}  // namespace

extern "C" void WINAPI GetSystemInfo(LPSYSTEM_INFO lpSystemInfo) {
  using namespace winapi;
  // Nothing to return: an injected failure leaves the record as it was.
  if (injectedValue("GetSystemInfo", Reports::ByReturnValue) || !lpSystemInfo) return;
  static const nlohmann::json kNoFigures = nlohmann::json::object();
  const nlohmann::json* figures = machineFigure("system");
  const nlohmann::json& system = figures ? *figures : kNoFigures;
  bool wow64 = system.value("wow64", false);
  Architecture architecture =
      architectureOf(wow64 ? PROCESSOR_ARCHITECTURE_INTEL
                           : system.value("processorArchitecture", kDefaultArchitecture));
  SYSTEM_INFO info{};
  info.wProcessorArchitecture = architecture.id;
  info.dwPageSize = machinePageSize();
  info.lpMinimumApplicationAddress = reinterpret_cast<LPVOID>(kLowestAddress);
  info.lpMaximumApplicationAddress =
      reinterpret_cast<LPVOID>(architecture.is32Bit ? kHighestAddress32 : kHighestAddress64);
  info.dwNumberOfProcessors = processorCount(system, architecture.is32Bit);
  info.dwActiveProcessorMask = processorMask(info.dwNumberOfProcessors);
  info.dwProcessorType = architecture.processorType;
  info.dwAllocationGranularity = kAllocationGranularity;
  info.wProcessorLevel =
      static_cast<WORD>(environmentNumber("PROCESSOR_LEVEL", 10, 0xFFFF).value_or(0));
  info.wProcessorRevision =
      static_cast<WORD>(environmentNumber("PROCESSOR_REVISION", 16, 0xFFFF).value_or(0));
  *lpSystemInfo = info;
}
