// The enumerator of a query and the objects it delivers. The enumerator is forward-only and
// has all its objects at once, so Next never waits; each object it delivers is the caller's,
// with one reference.
#include <utility>

#include "winapi/com/com_object.h"
#include "winapi/com/wmi.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/wmi_values.h"
#include "winapi/support/text.h"
#include "winapi/support/unicode_text.h"

extern "C" {
const IID IID_IEnumWbemClassObject = {
    0x027947E1, 0xD731, 0x11CE, {0xA3, 0x57, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};
const IID IID_IWbemClassObject = {
    0xDC12A681, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
}

namespace winapi {

namespace {

constexpr LONG kFlavorOriginLocal = 0;  // WBEM_FLAVOR_ORIGIN_LOCAL: the value is the object's own
constexpr LONG kInfinite = -1;          // WBEM_INFINITE as the LONG that Next takes

using Objects = std::shared_ptr<const nlohmann::json>;

class ClassObject final : public ComObject<IWbemClassObject> {
 public:
  ClassObject(Objects objects, std::size_t index)
      : ComObject(IID_IWbemClassObject),
        objects_(std::move(objects)),
        object_(objects_->at(index)) {}

  HRESULT Get(LPCWSTR wszName, LONG lFlags, VARIANT* pVal, CIMTYPE* pType,
              LONG* plFlavor) override {
    if (auto failed = injected<HRESULT>("IWbemClassObject::Get", Reports::ByReturnValue))
      return *failed;
    if (!wszName || lFlags != 0) return WBEM_E_INVALID_PARAMETER;
    const nlohmann::json* value = property(wideToUtf8(wszName));
    if (!value) return WBEM_E_NOT_FOUND;
    if (pVal && !toVariant(*value, *pVal)) return WBEM_E_OUT_OF_MEMORY;
    if (pType) *pType = cimTypeOf(*value);
    if (plFlavor) *plFlavor = kFlavorOriginLocal;
    return WBEM_S_NO_ERROR;
  }

 private:
  // WMI compares property names without regard to case.
  const nlohmann::json* property(const std::string& name) const {
    for (auto member = object_.begin(); member != object_.end(); ++member)
      if (equalsIgnoringCase(member.key(), name)) return &member.value();
    return nullptr;
  }

  Objects objects_;  // keeps object_ alive
  const nlohmann::json& object_;
};

class Enumerator final : public ComObject<IEnumWbemClassObject>, public ServiceProxy {
 public:
  explicit Enumerator(Objects objects)
      : ComObject(IID_IEnumWbemClassObject), objects_(std::move(objects)) {}

  HRESULT Next(LONG lTimeout, ULONG uCount, IWbemClassObject** apObjects,
               ULONG* puReturned) override {
    if (auto failed = injected<HRESULT>("IEnumWbemClassObject::Next", Reports::ByReturnValue))
      return *failed;
    if (!apObjects || !puReturned || lTimeout < kInfinite) return WBEM_E_INVALID_PARAMETER;
    *puReturned = 0;
    while (*puReturned < uCount && next_ < objects_->size())
      apObjects[(*puReturned)++] = new ClassObject(objects_, next_++);
    // Fewer than asked for, also none of none, is WBEM_S_FALSE.
    return uCount > 0 && *puReturned == uCount ? WBEM_S_NO_ERROR : WBEM_S_FALSE;
  }

 private:
  Objects objects_;
  std::size_t next_ = 0;
};

}  // namespace

IEnumWbemClassObject* newWbemEnumerator(Objects objects) {
  return new Enumerator(std::move(objects));
}

}  // namespace winapi
