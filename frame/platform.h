// The one place that chooses the platform: the real Win32 headers on
// Windows, the machine-backed layer everywhere else. Code includes this and
// calls Win32 and C runtime functions by their own names.
#pragma once

#ifdef _WIN32
#include <windows.h>

#include <cstdlib>
#include <ctime>
// Names that the Win32 headers turn into macros and that the host's
// interfaces use as member names.
#undef GetClassName
#else
#include "winapi/include/windows.h"
#endif
