// The Net API over the machine's `users` (the local account database) and `loggedOn` (the
// users the workstation service knows). A machine without one of them has no such service
// to reach, and the call fails as Windows fails then.
#include <string>
#include <vector>

#include "winapi/include/lm.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/netapi32/net_records.h"
#include "winapi/support/code_pages.h"

namespace {

using winapi::NetRecord;

constexpr DWORD kUserLevel = 3;
constexpr DWORD kWorkstationUserLevel = 1;
// FILTER_TEMP_DUPLICATE_ACCOUNT … FILTER_SERVER_TRUST_ACCOUNT: each is the account type bit
// of the UF_ flags, shifted right by 8.
constexpr DWORD kFilters = 0x003B;
constexpr unsigned kFilterShift = 8;
constexpr NET_API_STATUS kAccountDatabaseUnreachable = RPC_S_SERVER_UNAVAILABLE;

// What Windows reports for a plain local account in the fields machine.json does not give.
constexpr DWORD kNewAccountFlags = 0x0201;  // UF_SCRIPT | UF_NORMAL_ACCOUNT
constexpr DWORD kUserPrivilege = 1;         // USER_PRIV_USER
constexpr DWORD kForever = 0xFFFFFFFF;      // TIMEQ_FOREVER: the account never expires
constexpr DWORD kUnlimitedStorage = 0xFFFFFFFF;
constexpr DWORD kHoursPerWeek = 168;  // UNITS_PER_WEEK: logon hours are counted in hours
constexpr std::size_t kLogonHoursBytes = kHoursPerWeek / 8;
constexpr BYTE kAllHours = 0xFF;
// Relative ids of accounts made after setup, for users whose userId is not given.
constexpr DWORD kFirstUserId = 1000;
constexpr DWORD kUsersGroupId = 513;  // DOMAIN_GROUP_RID_USERS
const wchar_t kAnyLogonServer[] = L"\\\\*";

std::wstring text(const nlohmann::json& entry, const char* member) {
  return winapi::utf8ToWide(entry.value(member, ""));
}

NetRecord<USER_INFO_3> userRecord(const nlohmann::json& user, DWORD numberedId) {
  NetRecord<USER_INFO_3> record;
  USER_INFO_3& info = record.info;
  info.usri3_password_age = user.value("passwordAge", DWORD{0});
  info.usri3_priv = kUserPrivilege;
  info.usri3_flags = user.value("flags", kNewAccountFlags);
  info.usri3_last_logon = user.value("lastLogon", DWORD{0});
  info.usri3_acct_expires = kForever;
  info.usri3_max_storage = kUnlimitedStorage;
  info.usri3_units_per_week = kHoursPerWeek;
  info.usri3_country_code = user.value("countryCode", DWORD{0});
  info.usri3_user_id = user.value("userId", numberedId);
  info.usri3_primary_group_id = kUsersGroupId;
  info.usri3_password_expired = (info.usri3_flags & UF_PASSWORD_EXPIRED) ? 1 : 0;
  record.texts = {
      {&USER_INFO_3::usri3_name, text(user, "name")},
      {&USER_INFO_3::usri3_home_dir, text(user, "homeDir")},
      {&USER_INFO_3::usri3_comment, text(user, "comment")},
      {&USER_INFO_3::usri3_script_path, L""},
      {&USER_INFO_3::usri3_full_name, text(user, "fullName")},
      {&USER_INFO_3::usri3_usr_comment, L""},
      {&USER_INFO_3::usri3_parms, L""},
      {&USER_INFO_3::usri3_workstations, L""},
      {&USER_INFO_3::usri3_logon_server, kAnyLogonServer},
      {&USER_INFO_3::usri3_profile, L""},
      {&USER_INFO_3::usri3_home_dir_drive, L""},
  };
  record.bytes = {
      {&USER_INFO_3::usri3_logon_hours, std::vector<BYTE>(kLogonHoursBytes, kAllHours)}};
  return record;
}

NetRecord<WKSTA_USER_INFO_1> loggedOnRecord(const nlohmann::json& user) {
  NetRecord<WKSTA_USER_INFO_1> record;
  record.texts = {
      {&WKSTA_USER_INFO_1::wkui1_username, text(user, "user")},
      {&WKSTA_USER_INFO_1::wkui1_logon_domain, text(user, "domain")},
      {&WKSTA_USER_INFO_1::wkui1_oth_domains, text(user, "otherDomains")},
      {&WKSTA_USER_INFO_1::wkui1_logon_server, text(user, "logonServer")},
  };
  return record;
}

bool passesFilter(DWORD flags, DWORD filter) {
  return filter == 0 || ((flags >> kFilterShift) & filter) != 0;
}

}  // namespace

extern "C" NET_API_STATUS NET_API_FUNCTION NetUserEnum(LPCWSTR servername, DWORD level,
                                                       DWORD filter, LPBYTE* bufptr,
                                                       DWORD prefmaxlen, LPDWORD entriesread,
                                                       LPDWORD totalentries, PDWORD resume_handle) {
  using namespace winapi;
  if (auto failed = injected<NET_API_STATUS>("NetUserEnum", Reports::ByReturnValue)) return *failed;
  if (NET_API_STATUS status = checkNetServer(servername)) return status;
  if (level != kUserLevel) return ERROR_INVALID_LEVEL;
  NetPageRequest request{prefmaxlen, bufptr, entriesread, totalentries, resume_handle};
  if (NET_API_STATUS status = startNetAnswer(request)) return status;
  if (filter & ~kFilters) return ERROR_INVALID_PARAMETER;
  const nlohmann::json& description = currentMachine().description();
  if (!description.contains("users")) return kAccountDatabaseUnreachable;
  const nlohmann::json& users = description.at("users");
  std::vector<NetRecord<USER_INFO_3>> records;
  for (std::size_t i = 0; i < users.size(); ++i) {
    NetRecord<USER_INFO_3> record = userRecord(users[i], kFirstUserId + static_cast<DWORD>(i));
    if (passesFilter(record.info.usri3_flags, filter)) records.push_back(std::move(record));
  }
  return answerNetPage(records, request);
}

extern "C" NET_API_STATUS NET_API_FUNCTION NetWkstaUserEnum(LMSTR servername, DWORD level,
                                                            LPBYTE* bufptr, DWORD prefmaxlen,
                                                            LPDWORD entriesread,
                                                            LPDWORD totalentries,
                                                            LPDWORD resumehandle) {
  using namespace winapi;
  if (auto failed = injected<NET_API_STATUS>("NetWkstaUserEnum", Reports::ByReturnValue))
    return *failed;
  if (NET_API_STATUS status = checkNetServer(servername)) return status;
  if (level != kWorkstationUserLevel) return ERROR_INVALID_LEVEL;
  NetPageRequest request{prefmaxlen, bufptr, entriesread, totalentries, resumehandle};
  if (NET_API_STATUS status = startNetAnswer(request)) return status;
  const nlohmann::json& description = currentMachine().description();
  if (!description.contains("loggedOn")) return NERR_WkstaNotStarted;
  std::vector<NetRecord<WKSTA_USER_INFO_1>> records;
  for (const nlohmann::json& user : description.at("loggedOn"))
    records.push_back(loggedOnRecord(user));
  return answerNetPage(records, request);
}

// The buffers are local memory, as on Windows.
extern "C" NET_API_STATUS NET_API_FUNCTION NetApiBufferFree(LPVOID Buffer) {
  using namespace winapi;
  if (auto failed = injected<NET_API_STATUS>("NetApiBufferFree", Reports::ByReturnValue))
    return *failed;
  return LocalFree(Buffer) ? ERROR_INVALID_PARAMETER : NERR_Success;
}
