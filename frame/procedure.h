// Functions that not every system has, found at run time as the type they have.
#pragma once

#include "frame/platform.h"

namespace installedapps_col {

// GetProcAddress answers FARPROC, a type no function has; the cast goes through the generic
// function pointer, the one conversion between function types that compilers take as meant.
// Null when the module does not export `name`.
template <class Function>
Function procedure(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace installedapps_col
