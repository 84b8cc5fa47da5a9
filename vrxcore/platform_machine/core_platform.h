// The Win32 names the host's own helpers call, answered by the described
// machine.
#pragma once

#include "winapi/include/windows.h"
