// Where the inventory goes: stdout, or a file written whole or not at all.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace vrxhost {

// Hands `write` the stream of `path` ("-" or empty for stdout); a file is
// written beside its target and put in its place only when whole. Throws
// std::runtime_error naming the file when it cannot be written; an existing
// file is then left as it was.
void writeOutput(const std::string& path, const std::function<void(std::ostream&)>& write);

}  // namespace vrxhost
