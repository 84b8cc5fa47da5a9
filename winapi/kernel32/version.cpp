// The Windows version the machine reports: GetVersionExA, VerSetConditionMask,
// VerifyVersionInfoA and GetProductInfo, from machine.json's `version`. A machine without
// `version` does not say what Windows it runs; the calls that need it fail with
// ERROR_NOT_SUPPORTED, which no real Windows gives them, so such a machine is easy to spot.
#include <cstring>
#include <optional>
#include <string>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/machine_figures.h"
#include "winapi/support/code_pages.h"

static_assert(sizeof(OSVERSIONINFOA) == 148 && sizeof(OSVERSIONINFOEXA) == 156,
              "the version records as Windows lays them out");

namespace {

// Each VER_* type bit owns three bits of a condition mask, at three times its bit number.
constexpr int kTypeBits = 8;
constexpr BYTE kConditionBits = 0x07;
constexpr DWORD kFirstVersionWithProductTypes = 6;

// The service-pack text in the machine's ANSI code page, cut after the last whole character
// that leaves room for the terminator.
std::string csdVersionText(const std::string& utf8) {
  std::wstring wide = winapi::utf8ToWide(utf8);
  auto encoded =
      winapi::encode(winapi::currentMachine().ansiCodePage(), wide.data(), wide.size(), "?");
  std::size_t length = 0;
  for (std::size_t end : encoded->ends) {
    if (end >= sizeof(OSVERSIONINFOA::szCSDVersion)) break;
    length = end;
  }
  return encoded->bytes.substr(0, length);
}

// The machine's version as the extended record; nullopt without `version`. Members left out
// are those of a plain NT workstation without a service pack.
std::optional<OSVERSIONINFOEXA> machineVersion() {
  const nlohmann::json* version = winapi::machineFigure("version");
  if (!version) return std::nullopt;
  OSVERSIONINFOEXA info{};
  info.dwOSVersionInfoSize = sizeof info;
  info.dwMajorVersion = version->value("major", DWORD{0});
  info.dwMinorVersion = version->value("minor", DWORD{0});
  info.dwBuildNumber = version->value("build", DWORD{0});
  info.dwPlatformId = version->value("platformId", DWORD{VER_PLATFORM_WIN32_NT});
  std::string csdVersion = csdVersionText(version->value("csdVersion", ""));
  std::memcpy(info.szCSDVersion, csdVersion.c_str(), csdVersion.size() + 1);
  info.wServicePackMajor = version->value("servicePackMajor", WORD{0});
  info.wServicePackMinor = version->value("servicePackMinor", WORD{0});
  info.wSuiteMask = version->value("suiteMask", WORD{0});
  info.wProductType = version->value("productType", BYTE{VER_NT_WORKSTATION});
  return info;
}

BYTE conditionOf(DWORDLONG conditionMask, DWORD type) {
  for (int bit = 0; bit < kTypeBits; ++bit)
    if (type == (1u << bit)) return (conditionMask >> (3 * bit)) & kConditionBits;
  return 0;
}

// VER_AND and VER_OR, and a condition never set, compare no number: the test fails.
bool compares(DWORD have, DWORD want, BYTE condition) {
  switch (condition) {
    case VER_EQUAL:
      return have == want;
    case VER_GREATER:
      return have > want;
    case VER_GREATER_EQUAL:
      return have >= want;
    case VER_LESS:
      return have < want;
    case VER_LESS_EQUAL:
      return have <= want;
    default:
      return false;
  }
}

// VER_AND: every asked suite is there; VER_OR: one of them is, or none was asked.
bool suiteMatches(WORD have, WORD want, BYTE condition) {
  return condition == VER_AND ? (have & want) == want : want == 0 || (have & want) != 0;
}

struct VersionField {
  DWORD type;
  DWORD (*get)(const OSVERSIONINFOEXA&);
};

// Numbers that are tested each on its own.
const VersionField kSingleFields[] = {
    {VER_PRODUCT_TYPE, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.wProductType; }},
    {VER_PLATFORMID, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.dwPlatformId; }},
    {VER_BUILDNUMBER, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.dwBuildNumber; }},
};

// Numbers that are tested as one version, most significant first.
const VersionField kVersionFields[] = {
    {VER_MAJORVERSION, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.dwMajorVersion; }},
    {VER_MINORVERSION, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.dwMinorVersion; }},
    {VER_SERVICEPACKMAJOR, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.wServicePackMajor; }},
    {VER_SERVICEPACKMINOR, [](const OSVERSIONINFOEXA& v) -> DWORD { return v.wServicePackMinor; }},
};

// The first tested field that differs decides under its own condition; an equal field that its
// condition allows passes the decision to the next one. So 6.1 is at least 5.2 whatever the
// minor-version test says.
bool versionMatches(const OSVERSIONINFOEXA& have, const OSVERSIONINFOEXA& want, DWORD types,
                    DWORDLONG conditions) {
  for (const VersionField& field : kVersionFields) {
    if (!(types & field.type)) continue;
    DWORD mine = field.get(have), asked = field.get(want);
    if (!compares(mine, asked, conditionOf(conditions, field.type))) return false;
    if (mine != asked) return true;
  }
  return true;
}

bool matches(const OSVERSIONINFOEXA& have, const OSVERSIONINFOEXA& want, DWORD types,
             DWORDLONG conditions) {
  for (const VersionField& field : kSingleFields)
    if ((types & field.type) &&
        !compares(field.get(have), field.get(want), conditionOf(conditions, field.type)))
      return false;
  if ((types & VER_SUITENAME) &&
      !suiteMatches(have.wSuiteMask, want.wSuiteMask, conditionOf(conditions, VER_SUITENAME)))
    return false;
  return versionMatches(have, want, types, conditions);
}

bool validSuiteTest(DWORD types, DWORDLONG conditions) {
  BYTE condition = conditionOf(conditions, VER_SUITENAME);
  return !(types & VER_SUITENAME) || condition == VER_AND || condition == VER_OR;
}

}  // namespace

extern "C" BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA lpVersionInformation) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GetVersionExA", Reports::ThroughLastError)) return *failed;
  if (!lpVersionInformation) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  DWORD size = lpVersionInformation->dwOSVersionInfoSize;
  if (size != sizeof(OSVERSIONINFOA) && size != sizeof(OSVERSIONINFOEXA)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  std::optional<OSVERSIONINFOEXA> version = machineVersion();
  if (!version) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
  }
  // The short record stops before the service-pack numbers.
  version->dwOSVersionInfoSize = size;
  std::memcpy(lpVersionInformation, &*version, size);
  return TRUE;
}

// Sets the condition of one type; when TypeMask names several, the highest bit is the one set.
// Conditions are added to the mask, never replaced, as on Windows.
extern "C" ULONGLONG WINAPI VerSetConditionMask(ULONGLONG ConditionMask, DWORD TypeMask,
                                                BYTE Condition) {
  using namespace winapi;
  if (auto failed = injected<ULONGLONG>("VerSetConditionMask", Reports::ByReturnValue))
    return *failed;
  BYTE condition = Condition & kConditionBits;
  if (condition == 0) return ConditionMask;
  for (int bit = kTypeBits - 1; bit >= 0; --bit)
    if (TypeMask & (1u << bit)) return ConditionMask | (ULONGLONG{condition} << (3 * bit));
  return ConditionMask;
}

extern "C" BOOL WINAPI VerifyVersionInfoA(LPOSVERSIONINFOEXA lpVersionInformation, DWORD dwTypeMask,
                                          DWORDLONG dwlConditionMask) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("VerifyVersionInfoA", Reports::ThroughLastError)) return *failed;
  if (!lpVersionInformation) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (dwTypeMask == 0 || dwlConditionMask == 0 || !validSuiteTest(dwTypeMask, dwlConditionMask)) {
    SetLastError(ERROR_BAD_ARGUMENTS);
    return FALSE;
  }
  std::optional<OSVERSIONINFOEXA> version = machineVersion();
  if (!version) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
  }
  if (!matches(*version, *lpVersionInformation, dwTypeMask, dwlConditionMask)) {
    SetLastError(ERROR_OLD_WIN_VERSION);
    return FALSE;
  }
  return TRUE;
}

// Product types came with Windows 6.0: earlier versions get PRODUCT_UNDEFINED and FALSE. From
// 6.0 on the answer is the machine's `version.productInfo`, whatever version the caller names;
// a machine that does not give one answers as for an older version. No last error is set:
// Windows reports failures of this call by the result alone.
extern "C" BOOL WINAPI GetProductInfo(DWORD dwOSMajorVersion, DWORD, DWORD, DWORD,
                                      PDWORD pdwReturnedProductType) {
  using namespace winapi;
  if (auto failed = injected<BOOL>("GetProductInfo", Reports::ByReturnValue)) return *failed;
  if (!pdwReturnedProductType) return FALSE;
  const nlohmann::json* version = machineFigure("version");
  if (dwOSMajorVersion < kFirstVersionWithProductTypes || !version ||
      !version->contains("productInfo")) {
    *pdwReturnedProductType = PRODUCT_UNDEFINED;
    return FALSE;
  }
  *pdwReturnedProductType = (*version)["productInfo"].get<DWORD>();
  return TRUE;
}
