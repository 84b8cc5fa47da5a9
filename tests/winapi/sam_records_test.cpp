#include "winapi/formats/sam_records.h"

#include <gtest/gtest.h>

#include "test_sam.h"
#include "winapi/support/little_endian.h"

namespace winapi {
namespace {

std::string errorOf(void (*read)(const std::string&), const std::string& bytes) {
  try {
    read(bytes);
  } catch (const SamRecordError& error) {
    return error.what();
  }
  return "read";
}

void readF(const std::string& bytes) { readSamFixedRecord(bytes); }
void readV(const std::string& bytes) { readSamVariableRecord(bytes); }

TEST(SamRecords, TheFixedRecordGivesTimesControlBitsAndCountry) {
  TestAccount account{"alice", 1001, 0x211};
  account.lastLogon = 0x01DB123456789ABC;
  account.passwordLastSet = 0x01DA0000FFFF0001;
  account.countryCode = 0x0131;
  SamFixedRecord record = readSamFixedRecord(fixedRecord(account));
  EXPECT_EQ(record.lastLogon, account.lastLogon);
  EXPECT_EQ(record.passwordLastSet, account.passwordLastSet);
  EXPECT_EQ(record.accountControl, 0x211u);
  EXPECT_EQ(record.countryCode, 0x131);
  EXPECT_EQ(errorOf(readF, fixedRecord(account).substr(0, 0x4F)),
            "F record: 79 bytes, fewer than the 80 of its layout");
}

TEST(SamRecords, EachControlBitBecomesItsUserFlag) {
  EXPECT_EQ(userFlagsOf(0), 0x0001u);       // UF_SCRIPT alone
  EXPECT_EQ(userFlagsOf(0x10), 0x0201u);    // normal account
  EXPECT_EQ(userFlagsOf(0x15), 0x0223u);    // disabled, no password required
  EXPECT_EQ(userFlagsOf(0x210), 0x10201u);  // password never expires
  EXPECT_EQ(userFlagsOf(0x400), 0x0011u);   // locked out
  EXPECT_EQ(userFlagsOf(0x008), 0x0101u);   // temporary duplicate
  EXPECT_EQ(userFlagsOf(0x040), 0x0801u);   // interdomain trust
  EXPECT_EQ(userFlagsOf(0x080), 0x1001u);   // workstation trust
  EXPECT_EQ(userFlagsOf(0x100), 0x2001u);   // server trust
  EXPECT_EQ(userFlagsOf(0x002), 0x0009u);   // home directory required
  EXPECT_EQ(userFlagsOf(0x20000), 0x800001u);
}

TEST(SamRecords, TheVariableRecordsTextsAreCheckedAgainstTheRecord) {
  TestAccount account{"alice", 1001};
  account.fullName = "Alice Doe";
  account.comment = "Accountant";
  account.homeDirectory = "C:\\Home\\alice";
  const std::string bytes = variableRecord(account);
  SamVariableRecord record = readSamVariableRecord(bytes);
  EXPECT_EQ(record.fullName, L"Alice Doe");
  EXPECT_EQ(record.comment, L"Accountant");
  EXPECT_EQ(record.homeDirectory, L"C:\\Home\\alice");

  // The last entry ends where the record does; a byte more is beyond it.
  std::string last(0xCC + 8, '\0');
  putLittleEndian(last, 16 * 12, 4, 4);
  putLittleEndian(last, 16 * 12 + 4, 4, 4);
  EXPECT_EQ(errorOf(readV, last), "read");
  putLittleEndian(last, 16 * 12 + 4, 5, 4);
  EXPECT_EQ(errorOf(readV, last),
            "V record: entry 16 (unknown) at 0xD0, 5 bytes, reaches beyond the record's 212 bytes");

  std::string outside = bytes;
  putLittleEndian(outside, 2 * 12, 0xFFFFFFF0, 4);
  EXPECT_EQ(errorOf(readV, outside),
            "V record: entry 2 (full name) at 0x1000000BC, 18 bytes, reaches beyond the "
            "record's " +
                std::to_string(bytes.size()) + " bytes");
  std::string odd = bytes;
  putLittleEndian(odd, 3 * 12 + 4, 7, 4);
  EXPECT_EQ(errorOf(readV, odd), "V record: entry 3 (comment) holds 7 bytes, not UTF-16 text");
  EXPECT_EQ(errorOf(readV, bytes.substr(0, 0xCB)),
            "V record: 203 bytes, fewer than the 204 of its table");
}

}  // namespace
}  // namespace winapi
