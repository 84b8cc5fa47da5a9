// The inventory of the sample machine as vrxhost writes it, made once per test program, and
// small edits of it.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "tests/store/engine_fixture.h"

namespace storetest {

inline const nlohmann::json& sampleInventory() {
  static const nlohmann::json inventory = [] {
    const fs::path file =
        fs::temp_directory_path() / ("store_sample_" + std::to_string(::getpid()) + ".json");
    const std::string command = std::string("env -u VRX_EXCLUDEAPPS ") + VRXHOST + " --machine " +
                                VRX_BUILT_MACHINES + "/sample --output " + file.string();
    if (std::system(command.c_str()) != 0) throw std::runtime_error("vrxhost failed");
    const auto parsed = nlohmann::json::parse(readText(file));
    fs::remove(file);
    return parsed;
  }();
  return inventory;
}

// The first instance of `className` in `inventory`.
inline nlohmann::json& firstOf(nlohmann::json& inventory, const std::string& className) {
  for (auto& instance : inventory["instances"])
    if (instance["class"] == className) return instance;
  throw std::runtime_error("no instance of " + className);
}

inline std::size_t countOf(const nlohmann::json& inventory, const std::string& className) {
  std::size_t count = 0;
  for (const auto& instance : inventory["instances"]) count += instance["class"] == className;
  return count;
}

// Adds an application named `name` at `version`, made from the first one.
inline void addApplication(nlohmann::json& inventory, const std::string& name,
                           const std::string& version) {
  nlohmann::json application = firstOf(inventory, "QELTO_InstalledApplication");
  application["properties"]["ProductName"] = name;
  application["properties"]["ProductVersion"] = version;
  application["path"] = "QELTO_InstalledApplication.added=\"" + name + version + "\"";
  inventory["instances"].push_back(application);
}

// Removes the instances of `className` whose `property` is `value`.
inline void removeWhere(nlohmann::json& inventory, const std::string& className,
                        const std::string& property, const std::string& value) {
  auto& instances = inventory["instances"];
  for (auto it = instances.begin(); it != instances.end();) {
    if ((*it)["class"] == className && (*it)["properties"].value(property, "") == value)
      it = instances.erase(it);
    else
      ++it;
  }
}

}  // namespace storetest
