#include "winapi/formats/sam_records.h"

#include <cstdio>

#include "winapi/support/little_endian.h"
#include "winapi/support/registry_store.h"

namespace winapi {

namespace {

// F: the fields read, at their offsets in the record's 80 bytes.
constexpr std::size_t kFixedSize = 0x50;
constexpr std::size_t kLastLogonAt = 0x08;
constexpr std::size_t kPasswordLastSetAt = 0x18;
constexpr std::size_t kAccountControlAt = 0x38;
constexpr std::size_t kCountryCodeAt = 0x3C;

// V: a table of 17 entries of 12 bytes (offset, length, unused); offsets count from its end.
constexpr std::size_t kEntries = 17;
constexpr std::size_t kEntrySize = 12;
constexpr std::size_t kTableSize = kEntries * kEntrySize;
constexpr std::size_t kFullName = 2;
constexpr std::size_t kComment = 3;
constexpr std::size_t kHomeDirectory = 6;
const char* const kEntryNames[kEntries] = {"security descriptor",
                                           "name",
                                           "full name",
                                           "comment",
                                           "user comment",
                                           "unknown",
                                           "home directory",
                                           "home drive",
                                           "script path",
                                           "profile path",
                                           "workstations",
                                           "logon hours",
                                           "unknown",
                                           "LM hash",
                                           "NT hash",
                                           "unknown",
                                           "unknown"};

// Account control bit and the UF_* flag it stands for, as the account database maps them.
struct FlagPair {
  std::uint32_t accountControl;
  std::uint32_t userFlag;
};
constexpr std::uint32_t kScript = 0x0001;  // UF_SCRIPT
constexpr FlagPair kFlags[] = {
    {0x000001, 0x0000002},  // disabled
    {0x000002, 0x0000008},  // home directory required
    {0x000004, 0x0000020},  // password not required
    {0x000008, 0x0000100},  // temporary duplicate account
    {0x000010, 0x0000200},  // normal account
    {0x000020, 0x0020000},  // MNS logon account
    {0x000040, 0x0000800},  // interdomain trust account
    {0x000080, 0x0001000},  // workstation trust account
    {0x000100, 0x0002000},  // server trust account
    {0x000200, 0x0010000},  // password does not expire
    {0x000400, 0x0000010},  // locked out
    {0x000800, 0x0000080},  // encrypted text password allowed
    {0x001000, 0x0040000},  // smart card required
    {0x002000, 0x0080000},  // trusted for delegation
    {0x004000, 0x0100000},  // not delegated
    {0x008000, 0x0200000},  // DES keys only
    {0x010000, 0x0400000},  // no Kerberos pre-authentication
    {0x020000, 0x0800000},  // password expired
    {0x040000, 0x1000000},  // trusted to authenticate for delegation
    {0x080000, 0x2000000},  // no authorization data required
    {0x100000, 0x4000000},  // partial secrets account
};

[[noreturn]] void refuse(const char* record, const std::string& problem) {
  throw SamRecordError(std::string(record) + " record: " + problem);
}

std::string hex(std::uint64_t number) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(number));
  return text;
}

// The bytes entry `index` of the table points at, checked against the record.
std::string_view entryData(std::string_view record, std::size_t index) {
  std::size_t at = index * kEntrySize;
  std::uint64_t offset = littleEndian(record, at, 4), length = littleEndian(record, at + 4, 4);
  if (kTableSize + offset + length > record.size())
    refuse("V", "entry " + std::to_string(index) + " (" + kEntryNames[index] + ") at " +
                    hex(kTableSize + offset) + ", " + std::to_string(length) +
                    " bytes, reaches beyond the record's " + std::to_string(record.size()) +
                    " bytes");
  return record.substr(kTableSize + offset, length);
}

std::wstring entryText(std::string_view record, std::size_t index) {
  std::string_view text = entryData(record, index);
  if (text.size() % 2)
    refuse("V", "entry " + std::to_string(index) + " (" + kEntryNames[index] + ") holds " +
                    std::to_string(text.size()) + " bytes, not UTF-16 text");
  return fromUtf16Bytes(text);
}

}  // namespace

SamFixedRecord readSamFixedRecord(std::string_view bytes) {
  if (bytes.size() < kFixedSize)
    refuse("F", std::to_string(bytes.size()) + " bytes, fewer than the " +
                    std::to_string(kFixedSize) + " of its layout");
  SamFixedRecord record;
  record.lastLogon = littleEndian64(bytes, kLastLogonAt);
  record.passwordLastSet = littleEndian64(bytes, kPasswordLastSetAt);
  record.accountControl = littleEndian(bytes, kAccountControlAt, 4);
  record.countryCode = static_cast<std::uint16_t>(littleEndian(bytes, kCountryCodeAt, 2));
  return record;
}

SamVariableRecord readSamVariableRecord(std::string_view bytes) {
  if (bytes.size() < kTableSize)
    refuse("V", std::to_string(bytes.size()) + " bytes, fewer than the " +
                    std::to_string(kTableSize) + " of its table");
  for (std::size_t index = 0; index < kEntries; ++index) entryData(bytes, index);
  return {entryText(bytes, kFullName), entryText(bytes, kComment),
          entryText(bytes, kHomeDirectory)};
}

std::uint32_t userFlagsOf(std::uint32_t accountControl) {
  std::uint32_t flags = kScript;
  for (const FlagPair& pair : kFlags)
    if (accountControl & pair.accountControl) flags |= pair.userFlag;
  return flags;
}

}  // namespace winapi
