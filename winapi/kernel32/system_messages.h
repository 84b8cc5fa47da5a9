// The system message table: the texts FormatMessage finds for Win32 error numbers.
#ifndef VRX_WINAPI_SYSTEM_MESSAGES_H
#define VRX_WINAPI_SYSTEM_MESSAGES_H

#include <cstdint>

namespace winapi {

// The text, ending in "\r\n" as Windows keeps it, or nullptr for a number without one.
const char* systemMessage(std::uint32_t number);

}  // namespace winapi

#endif
