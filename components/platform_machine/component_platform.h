// The machine layer declares the setup INF parser and the version
// resources beside the rest of its Win32 names.
#pragma once

#include "frame/platform.h"
