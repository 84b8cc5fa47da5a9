// Fault injection from the machine's `fail` member, the same for every API function: each
// function starts with one line
//     if (auto failed = injected<BOOL>("GetComputerNameA", Reports::ThroughLastError)) return
//     *failed;
// and then returns the described value without doing anything. (`missing` is read where DLLs
// and exports are looked up.)
#ifndef VRX_WINAPI_FAULTS_H
#define VRX_WINAPI_FAULTS_H

#include <cstdint>
#include <optional>
#include <type_traits>

namespace winapi {

enum class Reports {
  ByReturnValue,     // the value says what failed (HRESULT, NET_API_STATUS, LSTATUS …)
  ThroughLastError,  // a failed call leaves GetLastError(); ERROR_GEN_FAILURE unless the entry
                     // names one
};

// The `fail` value for `function`, after setting the last error it calls for; nullopt when the
// function is to work normally.
std::optional<std::uint64_t> injectedValue(const char* function, Reports how);

template <class Result>
std::optional<Result> injected(const char* function, Reports how) {
  std::optional<std::uint64_t> value = injectedValue(function, how);
  if (!value) return std::nullopt;
  if constexpr (std::is_pointer_v<Result>)
    return reinterpret_cast<Result>(static_cast<std::uintptr_t>(*value));
  else
    return static_cast<Result>(*value);
}

}  // namespace winapi

#endif
