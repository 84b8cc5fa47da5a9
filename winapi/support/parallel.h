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
// How many slices of `perSlice` [0, size) is cut in.
constexpr std::size_t slicesOf(std::size_t size, std::size_t perSlice) {
  return (size + perSlice - 1) / perSlice;
}
// The same over [0, size) cut in slices of `perSlice` (the last one shorter): work(slice, first,
// end) for each.
void inParallelSlices(
    std::size_t size, std::size_t perSlice,
    const std::function<void(std::size_t slice, std::size_t first, std::size_t end)>& work);

}  // namespace winapi

#endif
