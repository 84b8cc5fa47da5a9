#include "test_sam.h"

#include <time.h>

#include <cstdio>
#include <vector>

#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr std::size_t kTableSize = 17 * 12;
constexpr std::uint64_t kTicksPerSecond = 10000000;
constexpr std::uint64_t kSecondsFrom1601To1970 = 11644473600;

std::string utf16(const std::string& ascii) {
  std::string bytes;
  for (char c : ascii) bytes += std::string{c, '\0'};
  return bytes;
}

std::string regHex(const std::string& bytes) {
  std::string text = "hex:";
  char byte[4];
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(byte, sizeof byte, i ? ",%02x" : "%02x", static_cast<unsigned char>(bytes[i]));
    text += byte;
  }
  return text;
}

}  // namespace

std::uint64_t fileTimeOf(const std::string& utc) {
  struct tm time = {};
  strptime(utc.c_str(), "%Y-%m-%dT%H:%M:%SZ", &time);
  return (static_cast<std::uint64_t>(timegm(&time)) + kSecondsFrom1601To1970) * kTicksPerSecond;
}

std::string fixedRecord(const TestAccount& account) {
  std::string record(0x50, '\0');
  putLittleEndian(record, 0x00, 0x00010002, 4);  // the layout's version
  putLittleEndian(record, 0x08, account.lastLogon, 8);
  putLittleEndian(record, 0x18, account.passwordLastSet, 8);
  putLittleEndian(record, 0x20, 0x7FFFFFFFFFFFFFFF, 8);  // the account never expires
  putLittleEndian(record, 0x30, account.rid, 4);
  putLittleEndian(record, 0x34, 513, 4);  // the group Users
  putLittleEndian(record, 0x38, account.accountControl, 4);
  record[0x3C] = static_cast<char>(account.countryCode);
  record[0x3D] = static_cast<char>(account.countryCode >> 8);
  return record;
}

std::string variableRecord(const TestAccount& account) {
  std::vector<std::string> entries(17);
  entries[0] = std::string(20, '\x01');  // a security descriptor
  entries[1] = utf16(account.name);
  entries[2] = utf16(account.fullName);
  entries[3] = utf16(account.comment);
  entries[6] = utf16(account.homeDirectory);
  entries[14] = std::string(20, '\x02');  // a password hash
  std::string record(kTableSize, '\0'), data;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    putLittleEndian(record, i * 12, static_cast<std::uint32_t>(data.size()), 4);
    putLittleEndian(record, i * 12 + 4, static_cast<std::uint32_t>(entries[i].size()), 4);
    data += entries[i] + std::string((4 - entries[i].size() % 4) % 4, '\0');
  }
  return record + data;
}

std::string samAccountRegText(const std::string& name, std::uint32_t rid, const std::string& f,
                              const std::string& v) {
  const std::string users = "[HKEY_LOCAL_MACHINE\\SAM\\SAM\\Domains\\Account\\Users\\";
  char key[9], type[9];
  std::snprintf(key, sizeof key, "%08X", rid);
  std::snprintf(type, sizeof type, "%x", rid);
  return users + "Names\\" + name + "]\n@=hex(" + type + "):\n\n" + users + key +
         "]\n\"F\"=" + regHex(f) + "\n\"V\"=" + regHex(v) + "\n\n";
}

std::string samAccountRegText(const TestAccount& account) {
  return samAccountRegText(account.name, account.rid, fixedRecord(account),
                           variableRecord(account));
}

}  // namespace winapi
