// The Win32 headers of the operating-system collectors beyond <windows.h>:
// performance counters and process-status records. Kept out of the shared
// platform header because <pdh.h> clashes with the Net API's <lm.h>.
#pragma once

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <pdh.h>
#include <pdhmsg.h>
#include <psapi.h>
// clang-format on
