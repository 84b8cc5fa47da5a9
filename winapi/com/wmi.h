// The WMI objects of this layer: the locator, the one class CoCreateInstance knows, and the
// enumerator that a query of the services hands out.
#ifndef VRX_WINAPI_WMI_H
#define VRX_WINAPI_WMI_H

#include <memory>
#include <nlohmann/json.hpp>

#include "winapi/include/wbemidl.h"

namespace winapi {

// Each holds one reference.
IWbemLocator* newWbemLocator();
// Delivers the objects of `objects`, a JSON array of checked WMI objects, in order.
IEnumWbemClassObject* newWbemEnumerator(std::shared_ptr<const nlohmann::json> objects);

}  // namespace winapi

#endif
