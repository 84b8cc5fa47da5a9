// Text helpers shared by the API areas: Windows compares names (environment variables, DLLs,
// file names, commands) without regard to case, and the A functions hand out text by one rule.
#ifndef VRX_WINAPI_TEXT_H
#define VRX_WINAPI_TEXT_H

#include <cstddef>
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

// The buffer rule shared by the A functions that return a string length (GetEnvironmentVariableA,
// GetSystemDirectoryA …): the text and its terminator when they fit, and then the length
// without the terminator; otherwise the size needed with the terminator, the buffer untouched.
std::size_t copyOrMeasure(const std::string& text, char* buffer, std::size_t size);

}  // namespace winapi

#endif
