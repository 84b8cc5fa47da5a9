// Where the inventory goes: stdout, or a file written whole or not at all.
#pragma once

#include <string>

namespace vrxhost {

// Throws std::runtime_error naming the file; an existing file is left as it
// was.
void writeOutput(const std::string& path, const std::string& text);

// Machine text (its ANSI code page) as UTF-8.
std::string machineTextToUtf8(const std::string& text);

}  // namespace vrxhost
