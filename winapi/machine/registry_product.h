// What Windows reports of itself to a program without a compatibility manifest (GetVersionExA,
// GetProductInfo), as its registry tells it: the `version` member of a machine description.
#ifndef VRX_WINAPI_REGISTRY_PRODUCT_H
#define VRX_WINAPI_REGISTRY_PRODUCT_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "winapi/support/registry_store.h"

namespace winapi {

// The version record from SOFTWARE's CurrentVersion and SYSTEM's ProductOptions; null when the
// registry does not say which version it is.
nlohmann::json registryVersion(const RegistryKey& machine);

// The VER_SUITE_* bits of ProductSuite's words, with those Windows adds itself for the version
// and product type (VER_NT_*).
std::uint16_t suiteMask(const std::vector<std::string>& productSuite, unsigned major,
                        unsigned minor, unsigned productType);

// The PRODUCT_* number of an EditionID; PRODUCT_UNDEFINED for one Windows does not define.
std::uint32_t productOfEdition(const std::string& editionId);

}  // namespace winapi

#endif
