#include "test_hive.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

namespace winapi {

namespace {

constexpr std::size_t kBaseBlock = 0x1000;
constexpr std::size_t kBinSize = 0x1000;
// Cell offsets count from the first bin.
constexpr std::uint32_t kRootCell = 0x20;
constexpr std::uint32_t kRootCellSize = 0x58;
constexpr std::uint32_t kSecurityCell = kRootCell + kRootCellSize;
constexpr std::uint32_t kSecurityCellSize = 0x30;
constexpr std::uint32_t kFreeCell = kSecurityCell + kSecurityCellSize;
constexpr std::uint32_t kNone = 0xFFFFFFFF;

void put32(std::string& bytes, std::size_t at, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i));
}
void put16(std::string& bytes, std::size_t at, std::uint16_t value) {
  bytes[at] = static_cast<char>(value);
  bytes[at + 1] = static_cast<char>(value >> 8);
}
void putText(std::string& bytes, std::size_t at, const char* text) {
  for (; *text; ++text) bytes[at++] = *text;
}

void restoreChecksum(std::string& hive) {
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < 0x1FC; at += 4)
    sum ^= static_cast<std::uint8_t>(hive[at]) | static_cast<std::uint8_t>(hive[at + 1]) << 8 |
           static_cast<std::uint8_t>(hive[at + 2]) << 16 |
           static_cast<std::uint32_t>(static_cast<std::uint8_t>(hive[at + 3])) << 24;
  put32(hive, 0x1FC, sum);
}

void writeBaseBlock(std::string& hive) {
  putText(hive, 0, "regf");
  put32(hive, 0x04, 1);  // sequence numbers match: the hive was written whole
  put32(hive, 0x08, 1);
  put32(hive, 0x14, 1);  // format 1.3
  put32(hive, 0x18, 3);
  put32(hive, 0x20, 1);
  put32(hive, 0x24, kRootCell);
  put32(hive, 0x28, kBinSize);
  put32(hive, 0x2C, 1);
  restoreChecksum(hive);
}

void writeRootKey(std::string& hive, std::size_t cell) {
  put32(hive, cell, static_cast<std::uint32_t>(-static_cast<std::int32_t>(kRootCellSize)));
  std::size_t key = cell + 4;
  putText(hive, key, "nk");
  put16(hive, key + 0x02, 0x2C);  // root, not deletable, ASCII name
  put32(hive, key + 0x10, kNone);
  put32(hive, key + 0x1C, kNone);
  put32(hive, key + 0x20, kNone);
  put32(hive, key + 0x28, kNone);
  put32(hive, key + 0x2C, kSecurityCell);
  put32(hive, key + 0x30, kNone);
  put16(hive, key + 0x48, 4);
  putText(hive, key + 0x4C, "ROOT");
}

// The one security descriptor every key shares: self-relative, no owner, group or lists.
void writeSecurity(std::string& hive, std::size_t cell) {
  put32(hive, cell, static_cast<std::uint32_t>(-static_cast<std::int32_t>(kSecurityCellSize)));
  std::size_t record = cell + 4;
  putText(hive, record, "sk");
  put32(hive, record + 0x04, kSecurityCell);
  put32(hive, record + 0x08, kSecurityCell);
  put32(hive, record + 0x0C, 1);
  put32(hive, record + 0x10, 20);
  hive[record + 0x14] = 1;
  put16(hive, record + 0x16, 0x8000);
}

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

std::string emptyHive() {
  std::string hive(kBaseBlock + kBinSize, '\0');
  writeBaseBlock(hive);
  std::size_t bin = kBaseBlock;
  putText(hive, bin, "hbin");
  put32(hive, bin + 0x08, kBinSize);
  writeRootKey(hive, bin + kRootCell);
  writeSecurity(hive, bin + kSecurityCell);
  put32(hive, bin + kFreeCell, kBinSize - kFreeCell);
  return hive;
}

void patchBaseBlock(std::string& hive, std::size_t at, std::uint32_t value) {
  put32(hive, at, value);
  restoreChecksum(hive);
}

void writeHive(const std::string& file, const std::string& prefix, const std::string& regText) {
  std::ofstream(file, std::ios::binary) << emptyHive();
  std::string reg = file + ".reg";
  std::ofstream(reg, std::ios::binary) << "REGEDIT4\n\n" << withAncestors(prefix, regText);
  std::string command = "hivexregedit --merge --prefix '" + prefix + "' '" + file + "' '" + reg +
                        "' 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::remove(reg.c_str());
}

}  // namespace winapi
