// The zone GetTimeZoneInformation answers with, as Windows reads it from its registry: the
// `timeZone` member of a machine description.
#ifndef VRX_WINAPI_REGISTRY_TIME_ZONE_H
#define VRX_WINAPI_REGISTRY_TIME_ZONE_H

#include <nlohmann/json.hpp>

#include "winapi/support/registry_store.h"

namespace winapi {

// From SYSTEM's TimeZoneInformation values, with the rules of `year` where the zone's Dynamic
// DST entries give some; null when the key holds no Bias.
nlohmann::json registryTimeZone(const RegistryKey& machine, int year);

}  // namespace winapi

#endif
