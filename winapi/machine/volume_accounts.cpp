#include "winapi/machine/volume_accounts.h"

#include <algorithm>
#include <chrono>
#include <cwchar>

#include "winapi/formats/sam_records.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/machine.h"
#include "winapi/support/calendar.h"
#include "winapi/support/text.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

namespace {

const RegistryPath kUsers{L"SAM", L"SAM", L"Domains", L"Account", L"Users"};
constexpr std::int64_t kLongestDword = 0xFFFFFFFF;

// Seconds since 1970 as the Net API's DWORD fields hold them; 0 for a time never set.
std::int64_t secondsSince1970(std::uint64_t fileTime) {
  return fileTime == 0 ? 0 : millisecondsFromFileTime(fileTime) / 1000;
}

std::int64_t dword(std::int64_t seconds) {
  return std::clamp<std::int64_t>(seconds, 0, kLongestDword);
}

// An account's key is its relative id as 8 hex digits.
std::wstring accountKeyName(std::uint32_t rid) {
  wchar_t name[9];
  std::swprintf(name, 9, L"%08X", static_cast<unsigned>(rid));
  return name;
}

std::optional<nlohmann::json> accountEntry(const RegistryKey& users, const RegistryKey& names,
                                           std::int64_t nowSeconds) {
  // The type of the name's default value is the account's relative id.
  const RegistryValue* id = names.value(L"");
  const RegistryKey* account = id ? users.subKey(accountKeyName(id->type)) : nullptr;
  const RegistryValue* fixed = account ? account->value(L"F") : nullptr;
  const RegistryValue* variable = account ? account->value(L"V") : nullptr;
  if (!fixed || !variable) return std::nullopt;
  try {
    SamFixedRecord f = readSamFixedRecord(fixed->data);
    SamVariableRecord v = readSamVariableRecord(variable->data);
    std::int64_t passwordSet = secondsSince1970(f.passwordLastSet);
    return nlohmann::json{{"name", wideToUtf8(names.name())},
                          {"userId", id->type},
                          {"fullName", wideToUtf8(v.fullName)},
                          {"comment", wideToUtf8(v.comment)},
                          {"flags", userFlagsOf(f.accountControl)},
                          {"homeDir", wideToUtf8(v.homeDirectory)},
                          {"countryCode", f.countryCode},
                          {"passwordAge", passwordSet > 0 ? dword(nowSeconds - passwordSet) : 0},
                          {"lastLogon", dword(secondsSince1970(f.lastLogon))}};
  } catch (const SamRecordError&) {
    return std::nullopt;  // the account database would not hand a damaged record out either
  }
}

}  // namespace

std::optional<nlohmann::json> samUsers(const Registry& registry, std::int64_t nowMilliseconds) {
  const RegistryKey* users = registry.root(Hive::LocalMachine).find(kUsers);
  const RegistryKey* names = users ? users->subKey(L"Names") : nullptr;
  if (!names) return std::nullopt;
  nlohmann::json list = nlohmann::json::array();
  for (const auto& name : names->subKeys())
    if (auto entry = accountEntry(*users, *name, nowMilliseconds / 1000)) list.push_back(*entry);
  return list;
}

void addSamUsers(const Registry& registry, nlohmann::json& facts) {
  auto now = facts.contains("now") && facts["now"].is_string()
                 ? parseUtcTime(facts["now"].get<std::string>())
                 : std::nullopt;
  auto clock = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::system_clock::now().time_since_epoch());
  if (auto users = samUsers(registry, now.value_or(clock.count()))) facts["users"] = *users;
}

void addLoggedOnUser(nlohmann::json& facts, const std::string& user) {
  if (!facts.contains("computerName")) return;
  std::string name = user;
  for (const nlohmann::json& account : facts.value("users", nlohmann::json::array()))
    if (equalsIgnoringCase(account.value("name", ""), user)) name = account.value("name", "");
  const std::string computer = facts["computerName"].get<std::string>();
  facts["loggedOn"] = nlohmann::json::array(
      {{{"user", name}, {"domain", computer}, {"logonServer", "\\\\" + computer}}});
}

}  // namespace winapi
