// Text helpers shared by the API areas: Windows compares names (environment variables, DLLs,
// file names, commands) without regard to case.
#ifndef VRX_WINAPI_TEXT_H
#define VRX_WINAPI_TEXT_H

#include <string>
#include <string_view>

namespace winapi {

std::string asciiLower(std::string_view text);
std::string asciiUpper(std::string_view text);
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Orders names the way Windows sorts them for case-insensitive lookup.
struct LessIgnoringCase {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

}  // namespace winapi

#endif
