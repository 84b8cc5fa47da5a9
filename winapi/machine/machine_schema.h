// The members of machine.json and the JSON type each must have. Members that are not
// described here are left alone, so a newer file still loads.
#ifndef VRX_WINAPI_MACHINE_SCHEMA_H
#define VRX_WINAPI_MACHINE_SCHEMA_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace winapi {

// Throws MachineError "file: member a.b[2].c: expected …" for the first member of a wrong type.
void checkMachineDescription(const nlohmann::json& description, const std::string& file);

// "file: member path: problem", for checks that go beyond the JSON type.
[[noreturn]] void throwMemberError(const std::string& file, const std::string& path,
                                   const std::string& problem);

// The value of a checked `fail` number: a JSON integer or a "0x…" string (HRESULTs).
std::uint64_t failureNumber(const nlohmann::json& value);

}  // namespace winapi

#endif
