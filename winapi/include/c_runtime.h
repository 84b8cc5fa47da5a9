// The Microsoft C runtime's functions the collector calls, as the machine's process sees them:
// the clock and zone as <time.h> declares them (c_runtime_time.cpp), and vrx_getenv, which the
// platform header names for the C runtime's getenv on every platform.

#ifndef VRX_WINAPI_C_RUNTIME_H
#define VRX_WINAPI_C_RUNTIME_H

#include "winapi/include/windows.h"

typedef int errno_t;
typedef long long __time64_t;

extern "C" {
__time64_t _time64(__time64_t* destTime);
void _tzset();
errno_t _get_timezone(long* seconds);
errno_t _get_daylight(int* hours);
struct tm* _localtime64(const __time64_t* sourceTime);

// The C runtime's getenv as the machine's process sees it: names compared without regard to
// case, values in the machine's ANSI code page. The pointer stays valid until the environment
// changes (another machine is made current).
char* vrx_getenv(const char* name) noexcept;
}  // extern "C"

#endif
