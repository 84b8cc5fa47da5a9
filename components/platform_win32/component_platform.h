// The Win32 headers of the component collectors beyond <windows.h>: the
// setup INF parser and the version resources.
#pragma once

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <setupapi.h>
#include <winver.h>
// clang-format on
