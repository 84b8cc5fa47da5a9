#include "winapi/support/local_memory.h"

#include <vector>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/support/handles.h"

namespace winapi {

namespace {

struct LocalBlock : HandleObject {
  static constexpr HandleKind kKind = HandleKind::LocalMemory;
  explicit LocalBlock(std::size_t size) : HandleObject(kKind), bytes(size) {}
  std::vector<char> bytes;
};

}  // namespace

void* allocateLocal(std::size_t size) {
  auto* block = new LocalBlock(size == 0 ? 1 : size);
  registerHandle(block->bytes.data(), block);
  return block->bytes.data();
}

}  // namespace winapi

extern "C" HLOCAL WINAPI LocalFree(HLOCAL hMem) {
  using namespace winapi;
  if (auto failed = injected<HLOCAL>("LocalFree", Reports::ThroughLastError)) return *failed;
  if (!hMem) return nullptr;
  auto* block = takeHandle<LocalBlock>(hMem);
  if (!block) {
    SetLastError(ERROR_INVALID_HANDLE);
    return hMem;
  }
  delete block;
  return nullptr;
}
