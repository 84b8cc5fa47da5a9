// vrxstore load: one snapshot per file, each file all or nothing.
#pragma once

#include "store/store.h"
#include "tools/vrxstore/options.h"

namespace vrxstore {

// Loads each file of the options; a file that is refused gets one line on stderr naming it and
// the place, and the others go on. The exit status: 1 when any was refused.
int loadFiles(Store& store, const Options& options);

}  // namespace vrxstore
