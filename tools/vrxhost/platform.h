// What vrxhost does differently on Linux and on Windows; the build picks
// the implementation.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "tools/vrxhost/options.h"

namespace vrxhost {

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
// What reading the machine's files cost, for -v (the bytes read of a disk image); "" when there
// is nothing to tell.
std::string machineReadingNote();
// Reads the key name of --export-registry and the machine; gives back what writes the machine's
// registry from that key down as a regedit file, and throws std::runtime_error instead, before
// writing anything, when the machine lacks the key. Throws std::invalid_argument for a key name
// that is none or on a platform with no machine to read, and std::runtime_error for a machine
// that cannot be read.
std::function<void(std::ostream&)> registryExport(const Options& options);

}  // namespace vrxhost
