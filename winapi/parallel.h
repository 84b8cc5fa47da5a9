// Work split in parts that run on every processor at once: reading a large machine is mostly
// text that can be decoded and parsed piece by piece.
#ifndef VRX_WINAPI_PARALLEL_H
#define VRX_WINAPI_PARALLEL_H

#include <cstddef>
#include <functional>

namespace winapi {

// Calls work(part) once for each part in [0, parts), on as many threads as there are
// processors, and returns when all are done. When parts throw, the lowest part's exception is
// rethrown: the one a run of the parts in order would have met first.
void inParallel(std::size_t parts, const std::function<void(std::size_t part)>& work);

}  // namespace winapi

#endif
