#include "winapi/machine/machine_figures.h"

#include "winapi/machine/machine.h"

namespace winapi {

namespace {

constexpr std::uint32_t kDefaultPageSize = 4096;

}  // namespace

const nlohmann::json* machineFigure(const char* name) {
  const nlohmann::json& description = currentMachine().description();
  auto found = description.find(name);
  return found == description.end() ? nullptr : &*found;
}

std::uint32_t machinePageSize() {
  const nlohmann::json* system = machineFigure("system");
  return system ? system->value("pageSize", kDefaultPageSize) : kDefaultPageSize;
}

}  // namespace winapi
