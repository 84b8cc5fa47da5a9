// The two records the account database keeps for each local account, the values F and V of
// SAM\Domains\Account\Users\<RID>: F is of fixed layout (times, account control bits, country
// code), V a table of (offset, length) entries followed by the texts and data they point at.
#ifndef VRX_WINAPI_SAM_RECORDS_H
#define VRX_WINAPI_SAM_RECORDS_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace winapi {

// A record whose bytes do not hold what its layout says; what() names the record and the place.
class SamRecordError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct SamFixedRecord {
  std::uint64_t lastLogon = 0;        // FILETIME; 0 when the account never logged on
  std::uint64_t passwordLastSet = 0;  // FILETIME; 0 when the password was never set
  std::uint32_t accountControl = 0;   // the USER_* account control bits
  std::uint16_t countryCode = 0;
};

struct SamVariableRecord {
  std::wstring fullName;
  std::wstring comment;
  std::wstring homeDirectory;
};

// Both throw SamRecordError when the record is shorter than its layout, or (V) an entry of its
// table reaches beyond the record or holds text of an odd number of bytes.
SamFixedRecord readSamFixedRecord(std::string_view bytes);
SamVariableRecord readSamVariableRecord(std::string_view bytes);

// The UF_* flags NetUserEnum reports for an account with these account control bits: each bit
// has its flag, and UF_SCRIPT is always there.
std::uint32_t userFlagsOf(std::uint32_t accountControl);

}  // namespace winapi

#endif
