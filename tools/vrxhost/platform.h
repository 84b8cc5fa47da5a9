// What vrxhost does differently on Linux and on Windows; the build picks
// the implementation.
#pragma once

#include <string>
#include <vector>

#include "tools/vrxhost/options.h"

namespace vrxhost {

// The folder of the running program, with a trailing separator.
std::string executableDirectory();
// The file name of the plug-in library as the build makes it.
std::string pluginFileName();
// Puts `from` in the place of `to` in one step; false, with errno set,
// when it cannot.
bool replaceFile(const std::string& from, const std::string& to);
// Makes the machine of the options the one the plug-in sees. Throws
// std::invalid_argument for an option the platform does not take, and
// std::runtime_error for a machine that cannot be read.
void presentMachine(const Options& options);
// What reading the machine found that the log should tell, a line each.
std::vector<std::string> machineWarnings();

}  // namespace vrxhost
