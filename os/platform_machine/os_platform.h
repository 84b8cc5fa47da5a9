// The machine layer declares the performance counters and process-status
// records beside the rest of its Win32 names.
#pragma once

#include "frame/platform.h"
