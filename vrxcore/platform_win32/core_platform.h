// The Win32 names the host's own helpers call, from the system's headers.
#pragma once

#include <windows.h>
