// The buffer rule shared by the A functions that return a string length (GetEnvironmentVariableA,
// GetSystemDirectoryA …): the text and its terminator when they fit, and then the length
// without the terminator; otherwise the size needed with the terminator, the buffer untouched.
#ifndef VRX_WINAPI_BUFFERS_H
#define VRX_WINAPI_BUFFERS_H

#include <cstddef>
#include <string>

namespace winapi {

std::size_t copyOrMeasure(const std::string& text, char* buffer, std::size_t size);

}  // namespace winapi

#endif
