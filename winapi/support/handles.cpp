#include "winapi/support/handles.h"

#include <mutex>
#include <unordered_map>

namespace winapi {

namespace {

std::mutex handlesMutex;

std::unordered_map<const void*, HandleObject*>& liveHandles() {
  static std::unordered_map<const void*, HandleObject*> handles;
  return handles;
}

}  // namespace

void registerHandle(const void* handle, HandleObject* object) {
  std::lock_guard<std::mutex> lock(handlesMutex);
  liveHandles()[handle] = object;
}

HandleObject* lookupHandle(const void* handle, HandleKind kind) {
  std::lock_guard<std::mutex> lock(handlesMutex);
  auto found = liveHandles().find(handle);
  return found != liveHandles().end() && found->second->magic == kind ? found->second : nullptr;
}

HandleObject* takeHandle(const void* handle, HandleKind kind) {
  std::lock_guard<std::mutex> lock(handlesMutex);
  auto found = liveHandles().find(handle);
  if (found == liveHandles().end() || found->second->magic != kind) return nullptr;
  HandleObject* object = found->second;
  liveHandles().erase(found);
  return object;
}

}  // namespace winapi
