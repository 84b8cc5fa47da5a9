// The accounts of an offline Windows volume for its description: the local users its SAM hive
// holds (the members of machine.json's `users`) and its profile's user as the one session logged
// on (`loggedOn`), as when the inventory runs in that user's session.
#ifndef VRX_WINAPI_VOLUME_ACCOUNTS_H
#define VRX_WINAPI_VOLUME_ACCOUNTS_H

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "winapi/support/registry_store.h"

namespace winapi {

// The users of the account domain (HKLM\SAM\SAM\Domains\Account\Users) in the order of their
// names, each with its relative id as userId; passwordAge counts to `nowMilliseconds` (since
// 1970, UTC). An account whose records are missing or damaged is left out; nullopt when there
// is no account domain.
std::optional<nlohmann::json> samUsers(const Registry& registry, std::int64_t nowMilliseconds);

// facts["users"] from samUsers, counting to facts["now"] when there is one, else to the real
// clock.
void addSamUsers(const Registry& registry, nlohmann::json& facts);

// facts["loggedOn"]: `user` (spelt as its account is, when facts["users"] has it) logged on
// locally, whose logon domain is the computer and logon server the computer itself. Nothing
// when the computer's name is not known.
void addLoggedOnUser(nlohmann::json& facts, const std::string& user);

}  // namespace winapi

#endif
