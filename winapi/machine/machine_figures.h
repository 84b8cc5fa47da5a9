// The live figures of machine.json that the system-information areas answer from: version,
// system, memory, performance, uptimeSeconds. A member that is absent means the machine does
// not say, and the call that needs it fails.
#ifndef VRX_WINAPI_MACHINE_FIGURES_H
#define VRX_WINAPI_MACHINE_FIGURES_H

#include <cstdint>
#include <nlohmann/json.hpp>

namespace winapi {

// The member `name` of the current machine's description, nullptr when absent.
const nlohmann::json* machineFigure(const char* name);

// system.pageSize, or the 4 KiB page of every x86 and x64 Windows.
std::uint32_t machinePageSize();

}  // namespace winapi

#endif
