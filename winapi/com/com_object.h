// The objects this layer hands out through COM interfaces: each counts its references, is
// deleted by its last Release, and answers QueryInterface for IUnknown and its own interface.
#ifndef VRX_WINAPI_COM_OBJECT_H
#define VRX_WINAPI_COM_OBJECT_H

#include <atomic>

#include "winapi/include/objbase.h"

namespace winapi {

template <class Interface>
class ComObject : public Interface {
 public:
  explicit ComObject(const IID& interfaceId) : interfaceId_(interfaceId) {}

  HRESULT QueryInterface(REFIID riid, void** ppvObject) override {
    if (!ppvObject) return E_POINTER;
    if (riid != IID_IUnknown && riid != interfaceId_) {
      *ppvObject = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    *ppvObject = static_cast<Interface*>(this);
    return S_OK;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~ComObject() = default;

 private:
  const IID& interfaceId_;
  std::atomic<ULONG> references_{1};
};

// Marks the objects that stand for objects of another process (the WMI service) and so are
// proxies, whose security CoSetProxyBlanket sets.
class ServiceProxy {
 public:
  virtual ~ServiceProxy() = default;
};

}  // namespace winapi

#endif
