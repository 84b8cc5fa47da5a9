// The C runtime's getenv as the machine's process sees it (vrx_getenv in c_runtime.h).
#include "winapi/include/c_runtime.h"
#include "winapi/include/windows.h"
#include "winapi/machine/machine.h"

extern "C" char* vrx_getenv(const char* name) noexcept {
  const winapi::EnvironmentBlock::Variable* variable =
      name ? winapi::currentMachine().environment().find(name) : nullptr;
  return variable ? const_cast<char*>(variable->ansiValue.c_str()) : nullptr;
}
