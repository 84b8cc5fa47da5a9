// The one place that chooses the platform: the real Win32 headers on
// Windows, the machine-backed layer everywhere else. Code includes this and
// calls Win32 and C runtime functions by their own names, but for getenv,
// which it calls as vrx_getenv.
#pragma once

#ifdef _WIN32
#include <windows.h>

#include <cstdlib>
#include <ctime>
// Names that the Win32 headers turn into macros and that the host's
// interfaces use as member names.
#undef GetClassName
// The process environment as the C runtime reads it; on Linux the machine
// layer answers vrx_getenv for the machine's process.
inline char* vrx_getenv(const char* name) { return std::getenv(name); }
#else
#include "winapi/include/c_runtime.h"
#include "winapi/include/windows.h"
#endif
