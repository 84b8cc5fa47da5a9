// The handles this layer hands out. Each stands for an object that starts with a magic number
// naming its kind, and is registered while it lives; a handle is looked up before it is used,
// so a stale, forged or wrong-kind handle is an error code, not a crash.
#ifndef VRX_WINAPI_HANDLES_H
#define VRX_WINAPI_HANDLES_H

#include <cstdint>

namespace winapi {

enum class HandleKind : std::uint32_t {
  Module = 0x4C444F4D,       // "MODL"
  LocalMemory = 0x4D434F4C,  // "LOCM"
  RegistryKey = 0x4B474552,  // "REGK"
  PdhQuery = 0x51484450,     // "PDHQ"
  PdhCounter = 0x43484450,   // "PDHC"
  InfFile = 0x464E4948,      // "HINF"
};

struct HandleObject {
  explicit HandleObject(HandleKind kind) : magic(kind) {}
  HandleKind magic;
};

void registerHandle(const void* handle, HandleObject* object);
HandleObject* lookupHandle(const void* handle, HandleKind kind);
// As lookupHandle, and the handle is no longer live (the caller then destroys the object).
HandleObject* takeHandle(const void* handle, HandleKind kind);

// The object of `handle` when it is a live handle of T's kind (T::kKind), else nullptr.
template <class T>
T* checkHandle(const void* handle) {
  return static_cast<T*>(lookupHandle(handle, T::kKind));
}

template <class T>
T* takeHandle(const void* handle) {
  return static_cast<T*>(takeHandle(handle, T::kKind));
}

}  // namespace winapi

#endif
