// Accounts of the account database laid out for tests: the bytes of their F and V records, and
// the .reg text of a SAM hive holding them (for writeHive with prefix kSamPrefix).
#ifndef VRX_TESTS_WINAPI_TEST_SAM_H
#define VRX_TESTS_WINAPI_TEST_SAM_H

#include <cstdint>
#include <string>

namespace winapi {

const char kSamPrefix[] = "HKEY_LOCAL_MACHINE\\SAM";

struct TestAccount {
  std::string name;
  std::uint32_t rid = 1000;
  std::uint32_t accountControl = 0x10;  // a normal account
  std::uint64_t lastLogon = 0;          // FILETIMEs
  std::uint64_t passwordLastSet = 0;
  std::uint16_t countryCode = 0;
  std::string fullName{}, comment{}, homeDirectory{};  // ASCII
};

// The FILETIME of "2026-11-22T10:15:30Z".
std::uint64_t fileTimeOf(const std::string& utc);

std::string fixedRecord(const TestAccount& account);
// Every entry's data after the table in turn, each padded to 4 bytes as Windows lays them out.
std::string variableRecord(const TestAccount& account);

// The account's Names\<name> key (its RID the type of the default value) and its <RID> key with
// the records given.
std::string samAccountRegText(const std::string& name, std::uint32_t rid, const std::string& f,
                              const std::string& v);
std::string samAccountRegText(const TestAccount& account);

}  // namespace winapi

#endif
