// One inventory run: schema, machine, plug-in, query, output.
#pragma once

#include "tools/vrxhost/options.h"

namespace vrxhost {

// The exit status; errors are reported on stderr.
int run(const Options& options);

}  // namespace vrxhost
