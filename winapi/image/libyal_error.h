// The libyal libraries report an error as a chain of messages; a machine error wants one line.
#ifndef VRX_WINAPI_IMAGE_LIBYAL_ERROR_H
#define VRX_WINAPI_IMAGE_LIBYAL_ERROR_H

#include <string>

namespace winapi {

// The innermost message of `error` (the one saying what was wrong), and frees it; "" without one.
template <typename Error, typename Sprint, typename Free>
std::string takeLibyalMessage(Error*& error, Sprint sprint, Free release) {
  if (!error) return "";
  char text[2048] = "";
  sprint(error, text, sizeof text);
  release(&error);
  std::string message(text);
  message = message.substr(0, message.find('\n'));
  const std::size_t colon = message.find(": ");
  return colon == std::string::npos ? message : message.substr(colon + 2);
}

}  // namespace winapi

#endif
