// A machine's description (the members of machine.json) as far as its registry tells it: computer
// name, version figures, processor architecture, Windows directory, time zone and the system and
// user environment. For machines that come as a registry rather than a description.
#ifndef VRX_WINAPI_REGISTRY_MACHINE_FACTS_H
#define VRX_WINAPI_REGISTRY_MACHINE_FACTS_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>

#include "winapi/support/registry_store.h"

namespace winapi {

// Members whose keys or values are missing are left out, so the calls that need them fail as
// they do on a machine that does not say. Expandable environment values are expanded in the
// order Windows builds the environment: system variables, then the user's. `now` (milliseconds
// since 1970 UTC) is the machine's clock when it has one of its own; it picks the year whose
// daylight rules the zone follows.
nlohmann::json registryMachineFacts(const Registry& registry,
                                    std::optional<std::int64_t> now = std::nullopt);

// When the machine last shut down (ShutdownTime), in milliseconds since 1970 UTC.
std::optional<std::int64_t> registryShutdownTime(const Registry& registry);

// The profile's user as the machine's user: userName, and USERNAME, USERPROFILE and USERDOMAIN
// (a local account, whose domain is the computer) in the environment.
void addProfileUser(nlohmann::json& facts, const std::string& name, const std::string& profile);

}  // namespace winapi

#endif
