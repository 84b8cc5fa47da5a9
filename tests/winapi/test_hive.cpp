#include "test_hive.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include "bench/hive_writer.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

// hivexregedit makes a key only below one that exists: each key's missing ancestors below the
// prefix are put before it.
std::string withAncestors(const std::string& prefix, const std::string& regText) {
  std::set<std::string> made;
  std::istringstream lines(regText);
  std::string out;
  for (std::string line; std::getline(lines, line); out += line + "\n") {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.rfind("[", 0) != 0 || line.back() != ']') continue;
    std::string key = line.substr(1, line.size() - 2);
    for (std::size_t end = key.find('\\', prefix.size() + 1); end != std::string::npos;
         end = key.find('\\', end + 1))
      if (made.insert(key.substr(0, end)).second) out += "[" + key.substr(0, end) + "]\n\n";
    made.insert(key);
  }
  return out;
}

}  // namespace

std::string emptyHive() { return bench::hiveBytes(RegistryKey(L"ROOT")); }

void patchBaseBlock(std::string& hive, std::size_t at, std::uint32_t value) {
  putLittleEndian(hive, at, value, 4);
  bench::sealBaseBlock(hive);
}

void writeHive(const std::string& file, const std::string& prefix, const std::string& regText) {
  std::ofstream(file, std::ios::binary) << emptyHive();
  std::string reg = file + ".reg";
  std::ofstream(reg, std::ios::binary) << "REGEDIT4\n\n" << withAncestors(prefix, regText);
  std::string command =
      "hivexregedit --merge --prefix '" + prefix + "' '" + file + "' '" + reg + "' 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::remove(reg.c_str());
}

}  // namespace winapi
