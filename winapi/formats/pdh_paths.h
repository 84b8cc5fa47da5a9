// Counter paths as PDH writes and reads them:
//     \\machine\object(parent/instance#index)\counter
// where the machine and the instance part may be left out, the parent and the index too (an
// index of 0 is never written).
#ifndef VRX_WINAPI_PDH_PATHS_H
#define VRX_WINAPI_PDH_PATHS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace winapi {

struct CounterPath {
  std::string machine;  // without the leading backslashes; empty for the local machine
  std::string object;
  std::optional<std::string> instance;
  std::string parentInstance;
  std::uint32_t instanceIndex = 0;
  std::string counter;
};

std::string formatCounterPath(const CounterPath& path);
// nullopt for text that is no counter path (no object or no counter, unbalanced parentheses …).
std::optional<CounterPath> parseCounterPath(std::string_view text);

}  // namespace winapi

#endif
