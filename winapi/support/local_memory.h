// LMEM_FIXED local memory, as FormatMessageA with FORMAT_MESSAGE_ALLOCATE_BUFFER hands it to
// the caller, who releases it with LocalFree.
#ifndef VRX_WINAPI_LOCAL_MEMORY_H
#define VRX_WINAPI_LOCAL_MEMORY_H

#include <cstddef>

namespace winapi {

// A zeroed block of `size` bytes; the pointer is also its HLOCAL.
void* allocateLocal(std::size_t size);

// Releases a block that allocateLocal handed out; false, with nothing done, for any other pointer.
bool freeLocal(void* memory);

}  // namespace winapi

#endif
