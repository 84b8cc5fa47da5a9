// How far the reading of a container that reads slowly (EWF decompresses) has come, told to
// whoever shows progress: the program, which alone knows whether there is a terminal.
#ifndef VRX_WINAPI_IMAGE_SLOW_READS_H
#define VRX_WINAPI_IMAGE_SLOW_READS_H

#include <cstdint>
#include <functional>

namespace winapi {

// Called with the bytes of the disk read so far and the disk's size; none by default.
using SlowReadProgress = std::function<void(std::uint64_t read, std::uint64_t size)>;

void setSlowReadProgress(SlowReadProgress progress);
void reportSlowRead(std::uint64_t read, std::uint64_t size);

}  // namespace winapi

#endif
