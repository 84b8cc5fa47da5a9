// The files the programs ship with (the schema, the plug-in, the sample machine), found from
// where the running program is: beside it in a build tree and in the Windows folder, in the
// folders an install makes relative to bin/ on Linux. An installed tree can be moved whole.
#pragma once

#include <string>

namespace NZARVEK20 {

// The running program's folder, with a trailing separator.
std::string ProgramDirectory();

// `name` beside the program when it is there, else `name` in `installedFolder` (relative to the
// install's root: "share/vrx", "lib/x86_64-linux-gnu/vrx").
std::string ShippedFile(const std::string& installedFolder, const std::string& name);

}  // namespace NZARVEK20
