#include "accounts/user_account_reader.h"

#include <cstring>

#include "accounts/account_names.h"
#include "frame/cim_value_builder.h"
#include "frame/date_time_parser.h"
#include "frame/narrow_text.h"
#include "frame/schema_names.h"
#include "host/os_specific.h"

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <lm.h>
// clang-format on

namespace installedapps_col {

using namespace NZARVEK20;

namespace {

constexpr DWORD kUserInfoLevel = 3;
constexpr DWORD kSessionInfoLevel = 1;
// Small pages, so that the limit below is looked at often.
constexpr DWORD kUserPageBytes = 100;
// Further pages of accounts are asked for only while fewer records than
// this have been examined, logged on or not.
constexpr unsigned kExaminedLimit = 16;

std::string environmentText(const char* name) {
  const char* value = vrx_getenv(name);
  return value ? std::string(value) : std::string();
}

// Runs one Net API enumeration page by page: `enumerate(&buffer, &read)`
// makes one call, `take` sees each record of the page, and the next page is
// asked for while the call answers ERROR_MORE_DATA and `wantMore()` agrees.
// Each page is freed; a failed call ends the enumeration without a word.
template <class Record, class Enumerate, class Take, class WantMore>
void readPages(Enumerate enumerate, Take take, WantMore wantMore) {
  NET_API_STATUS status;
  do {
    LPBYTE buffer = nullptr;
    DWORD read = 0;
    status = enumerate(&buffer, &read);
    if (status != NERR_Success && status != ERROR_MORE_DATA) {
      if (buffer) NetApiBufferFree(buffer);
      return;
    }
    if (!buffer) return;
    const Record* records = reinterpret_cast<const Record*>(buffer);
    for (DWORD index = 0; index < read; ++index) take(records[index]);
    NetApiBufferFree(buffer);
  } while (status == ERROR_MORE_DATA && wantMore());
}

PropertyMap describeAccount(const USER_INFO_3& user, const std::string& name,
                            const std::map<std::string, std::string>& session, LogMessage* logger) {
  const std::string fullName = narrowString(user.usri3_full_name);
  CIMValueBuilder arrays{boost::shared_ptr<ICIMClass>()};
  const DWORD flags = user.usri3_flags;
  PropertyMap account;
  account[constants::kUserID] = TCIMValue(name);
  account[constants::kName] = TCIMValue(fullName.empty() ? name : fullName);
  // Converted for every account, so that each logs alike; only a real
  // logon is kept.
  const TCIMDateTime lastLogon = DateTimeParser(logger).dateFromSeconds(user.usri3_last_logon);
  if (user.usri3_last_logon != 0) account[constants::kLastLogon] = TCIMValue(lastLogon);
  account[constants::kHost] = arrays.buildStringArrayValue(TOSSpecific::GetMachineName());
  account[constants::kLocalityName] =
      arrays.buildStringArrayValue(std::to_string(user.usri3_country_code));
  account[constants::kDescriptions] =
      arrays.buildStringArrayValue(narrowString(user.usri3_comment));
  account[constants::kAccountEnabled] =
      TCIMValue(!UserAccountReader::isFlagSet(UF_ACCOUNTDISABLE, flags));
  account[constants::kRequiresPassword] =
      TCIMValue(!UserAccountReader::isFlagSet(UF_PASSWD_NOTREQD, flags));
  account[constants::kUserCanChangePassword] =
      TCIMValue(!UserAccountReader::isFlagSet(UF_PASSWD_CANT_CHANGE, flags));
  account[constants::kPasswordExpired] =
      TCIMValue(UserAccountReader::isFlagSet(UF_PASSWORD_EXPIRED, flags));
  account[constants::kPasswordAge] =
      TCIMValue(DateTimeParser(logger).intervalFromSeconds(user.usri3_password_age));
  account[constants::kHomeDirectory] = TCIMValue(narrowString(user.usri3_home_dir));
  account[constants::kLogonServer] = TCIMValue(session.at(constants::kLogonServer));
  account[constants::kDomain] = TCIMValue(session.at(constants::kDomain));
  return account;
}

// The process's user as the environment names it, unless an account of
// that Name has been found already.
void addEnvironmentAccount(AccountList& accounts, const LoggedOnUsers& loggedOn,
                           const std::string& lastLogonServer) {
  const std::string user = environmentText(constants::kUserNameVariable);
  const TCIMValue userName(user);
  for (const PropertyMap& account : accounts) {
    auto name = account.find(constants::kName);
    if (name != account.end() && name->second == userName) return;
  }
  PropertyMap account = {
      {constants::kUserID, userName},
      {constants::kName, userName},
      {constants::kHomeDirectory, TCIMValue(environmentText(constants::kUserProfileVariable))},
      {constants::kDomain, TCIMValue(environmentText(constants::kUserDomainVariable))}};
  if (loggedOn.count(user)) account[constants::kLogonServer] = TCIMValue(lastLogonServer);
  accounts.push_back(std::move(account));
}

}  // namespace

AccountList UserAccountReader::getAccounts() {
  AccountList accounts = readAccounts();
  for (PropertyMap& account : accounts)
    for (auto entry = account.begin(); entry != account.end();)
      entry = entry->second.IsNull() ? account.erase(entry) : std::next(entry);
  return accounts;
}

AccountList UserAccountReader::readAccounts() {
  const LoggedOnUsers loggedOn = getLoggedOnUsers();
  AccountList accounts;
  std::string lastLogonServer;
  unsigned examined = 0;
  DWORD resume = 0;
  readPages<USER_INFO_3>(
      [&resume](LPBYTE* buffer, DWORD* read) {
        DWORD total = 0;
        return NetUserEnum(nullptr, kUserInfoLevel, 0, buffer, kUserPageBytes, read, &total,
                           &resume);
      },
      [&](const USER_INFO_3& user) {
        ++examined;
        const std::string name = narrowString(user.usri3_name);
        auto session = loggedOn.find(name);
        if (session == loggedOn.end()) return;
        accounts.push_back(describeAccount(user, name, session->second, logger));
        lastLogonServer = session->second.at(constants::kLogonServer);
      },
      [&examined] { return examined < kExaminedLimit; });
  addEnvironmentAccount(accounts, loggedOn, lastLogonServer);
  return accounts;
}

LoggedOnUsers UserAccountReader::getLoggedOnUsers() {
  LoggedOnUsers users;
  DWORD resume = 0;
  readPages<WKSTA_USER_INFO_1>(
      [&resume](LPBYTE* buffer, DWORD* read) {
        DWORD total = 0;
        return NetWkstaUserEnum(nullptr, kSessionInfoLevel, buffer, MAX_PREFERRED_LENGTH, read,
                                &total, &resume);
      },
      [&users](const WKSTA_USER_INFO_1& session) {
        users.insert({narrowString(session.wkui1_username),
                      {{constants::kDomain, narrowString(session.wkui1_logon_domain)},
                       {constants::kLogonServer, narrowString(session.wkui1_logon_server)}}});
      },
      [] { return true; });
  return users;
}

std::string UserAccountReader::getCurrentUserName() {
  DWORD size = 0;
  if (GetUserNameA(nullptr, &size)) return std::string();
  if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return std::string();
  std::vector<char> buffer(size, '\0');
  if (!GetUserNameA(buffer.data(), &size)) return std::string();
  return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

}  // namespace installedapps_col
