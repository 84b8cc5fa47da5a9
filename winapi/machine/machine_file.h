// Reading the machine directory's files: their bytes, and machine.json's JSON syntax errors
// reported as "file:line:column: …".
#ifndef VRX_WINAPI_MACHINE_FILE_H
#define VRX_WINAPI_MACHINE_FILE_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace winapi {

// Throws MachineError naming `file` when it cannot be read or is not JSON.
nlohmann::json readMachineFile(const std::string& file);
nlohmann::json parseMachineText(std::string_view text, const std::string& file);
// The bytes of a file of the machine directory; throws MachineError naming `file` when it cannot
// be read or is larger than `limitMiB` MiB.
std::string readMachineBytes(const std::string& file, std::uintmax_t limitMiB);

}  // namespace winapi

#endif
