#include "winapi/machine/faults.h"

#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

namespace winapi {

std::optional<std::uint64_t> injectedValue(const char* function, Reports how) {
  const InjectedFailure* failure = currentMachine().injectedFailure(function);
  if (!failure) return std::nullopt;
  if (failure->lastError)
    SetLastError(*failure->lastError);
  else if (how == Reports::ThroughLastError)
    SetLastError(ERROR_GEN_FAILURE);
  return failure->value;
}

}  // namespace winapi
