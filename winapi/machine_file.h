// Reading machine.json: its bytes, and JSON syntax errors reported as "file:line:column: …".
#ifndef VRX_WINAPI_MACHINE_FILE_H
#define VRX_WINAPI_MACHINE_FILE_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace winapi {

// Throws MachineError naming `file` when it cannot be read or is not JSON.
nlohmann::json readMachineFile(const std::string& file);
nlohmann::json parseMachineText(std::string_view text, const std::string& file);

}  // namespace winapi

#endif
