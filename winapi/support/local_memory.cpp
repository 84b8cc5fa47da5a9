#include "winapi/support/local_memory.h"

#include <vector>

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

bool freeLocal(void* memory) {
  auto* block = takeHandle<LocalBlock>(memory);
  if (!block) return false;
  delete block;
  return true;
}

}  // namespace winapi
