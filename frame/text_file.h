// Opening a text file of the machine for reading: in text mode, so that a
// CR LF pair reads as one line end, and without keeping other readers or
// writers out. The platform's file comes from the build.
#pragma once

#include <istream>
#include <memory>
#include <string>

namespace installedapps_col {

// `path` is a Windows path in the system's ANSI code page; null when the
// file doesn't open.
std::unique_ptr<std::istream> openTextFile(const std::string& path);

}  // namespace installedapps_col
