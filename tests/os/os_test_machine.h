// Machines for the operating-system tests: a machine.json, registry keys
// as .reg text and files on the machine's drives, current while the object
// lives; and the schema's operating-system classes.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/frame/plugin_test_support.h"
#include "tests/winapi/reg_text_values.h"

namespace installedapps_col {

class OsMachine {
 public:
  // `files` maps a path under the machine directory ("drive_c/boot.ini")
  // to its bytes.
  explicit OsMachine(const nlohmann::json& description, const std::string& reg = "",
                     const std::map<std::string, std::string>& files = {}) {
    dir_.write("machine.json", description.dump());
    dir_.write("registry/10-test.reg", "Windows Registry Editor Version 5.00\r\n\r\n" + reg);
    for (const auto& file : files) dir_.write(file.first, file.second);
    winapi::setCurrentMachine(winapi::Machine::load(dir_.path()));
  }
  ~OsMachine() { winapi::setCurrentMachine(nullptr); }
  OsMachine(const OsMachine&) = delete;
  OsMachine& operator=(const OsMachine&) = delete;

 private:
  TempDirectory dir_;
};

// A key under HKEY_LOCAL_MACHINE with its value lines, as .reg text.
inline std::string machineKey(const std::string& path, const std::string& values) {
  return "[HKEY_LOCAL_MACHINE\\" + path + "]\r\n" + values + "\r\n";
}

// A Windows 7 Professional x64 in Central Europe, with every live figure:
// the machine the tests change one member of.
inline nlohmann::json windows7() {
  return {
      {"computerName", "WKS-042"},
      {"now", "2026-11-22T10:15:30Z"},
      {"environment", {{"SystemDrive", "C:"}, {"SystemRoot", "C:\\Windows"}}},
      {"version",
       {{"major", 6},
        {"minor", 1},
        {"build", 7601},
        {"platformId", 2},
        {"csdVersion", "Service Pack 1"},
        {"suiteMask", 256},
        {"productType", 1},
        {"productInfo", 48}}},
      {"system", {{"processorArchitecture", 9}, {"pageSize", 4096}, {"wow64", false}}},
      {"memory",
       {{"memoryLoad", 41},
        {"totalPhys", 8589934592ULL},
        {"availPhys", 5068718080ULL},
        {"totalPageFile", 17179869184ULL},
        {"availPageFile", 12884901888ULL},
        {"totalVirtual", 140737488224256ULL},
        {"availVirtual", 140737400000000ULL}}},
      {"performance",
       {{"commitTotal", 1000000},
        {"commitLimit", 4000000},
        {"commitPeak", 1200000},
        {"physicalTotal", 2097152},
        {"physicalAvailable", 1237480},
        {"systemCache", 600000},
        {"kernelTotal", 90000},
        {"kernelPaged", 60000},
        {"kernelNonpaged", 30000},
        {"pageSize", 4096},
        {"handleCount", 31000},
        {"processCount", 120},
        {"threadCount", 1500}}},
      {"uptimeSeconds", 70000},
      {"timeZone",
       {{"bias", -60},
        {"standardName", "W. Europe Standard Time"},
        {"standardBias", 0},
        {"daylightName", "W. Europe Daylight Time"},
        {"daylightBias", -60},
        {"standardDate", {{"month", 10}, {"dayOfWeek", 0}, {"day", 5}, {"hour", 3}}},
        {"daylightDate", {{"month", 3}, {"dayOfWeek", 0}, {"day", 5}, {"hour", 2}}}}},
  };
}

// The levels and texts of the logged lines that hold `part`.
inline std::vector<std::pair<int, std::string>> linesWith(const LogCapture& log,
                                                          const std::string& part) {
  std::vector<std::pair<int, std::string>> found;
  for (const auto& line : log.lines())
    if (line.second.find(part) != std::string::npos) found.push_back(line);
  return found;
}

}  // namespace installedapps_col
