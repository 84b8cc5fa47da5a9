// The error of a machine directory or description that cannot be used, thrown by the machine's
// sources and by the readers of the files they are made of.
#ifndef VRX_WINAPI_ERRORS_H
#define VRX_WINAPI_ERRORS_H

#include <stdexcept>

namespace winapi {

// A machine directory or description that cannot be used; what() names the file and the place.
class MachineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace winapi

#endif
