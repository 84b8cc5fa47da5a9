#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <vector>

#include "test_machine.h"
#include "winapi/include/lm.h"
#include "winapi/include/windows.h"

namespace {

// Five accounts whose records are of one size: names and texts of equal lengths.
const char* const kMachine = R"({"computerName": "WKS-1",
    "users": [
      {"name": "user1", "fullName": "Jos\u00e9 One", "comment": "first", "flags": 66049,
       "homeDir": "C:\\Users\\user1", "countryCode": 49, "passwordAge": 100000, "lastLogon": 1763800000},
      {"name": "user2", "fullName": "Name Two", "comment": "secnd", "flags": 8389123, "homeDir": "C:\\Users\\user2"},
      {"name": "user3", "fullName": "Name Thr", "comment": "third", "flags": 4097, "homeDir": "C:\\Users\\user3"},
      {"name": "user4", "fullName": "Name Fou", "comment": "forth", "homeDir": "C:\\Users\\user4"},
      {"name": "user5", "fullName": "Name Fiv", "comment": "fifth", "flags": 515, "homeDir": "C:\\Users\\user5"}],
    "loggedOn": [
      {"user": "user1", "domain": "CORP", "logonServer": "\\\\DC1", "otherDomains": "EAST WEST"},
      {"user": "WKS-1$", "domain": "CORP"}]})";

constexpr NET_API_STATUS kSuccess = NERR_Success;
constexpr NET_API_STATUS kMoreData = ERROR_MORE_DATA;

struct Page {
  NET_API_STATUS status;
  std::vector<std::wstring> names;
  DWORD total;
};

// Every page of NetUserEnum from the start, as a caller that follows ERROR_MORE_DATA reads them.
std::vector<Page> userPages(DWORD preferred, DWORD filter = 0) {
  std::vector<Page> pages;
  DWORD resume = 0;
  NET_API_STATUS status;
  do {
    LPBYTE buffer = nullptr;
    DWORD read = 0, total = 0;
    status = NetUserEnum(nullptr, 3, filter, &buffer, preferred, &read, &total, &resume);
    Page page{status, {}, total};
    for (DWORD i = 0; i < read; ++i) page.names.push_back(((USER_INFO_3*)buffer)[i].usri3_name);
    EXPECT_EQ(NetApiBufferFree(buffer), kSuccess);
    pages.push_back(page);
  } while (status == ERROR_MORE_DATA && pages.size() < 10);
  EXPECT_EQ(resume, 0u) << "after the last page";
  return pages;
}

// The names of all pages, checking the rules every page keeps.
std::vector<std::wstring> namesOf(const std::vector<Page>& pages, std::size_t all) {
  std::vector<std::wstring> names;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const bool last = i + 1 == pages.size();
    EXPECT_EQ(pages[i].status, last ? kSuccess : kMoreData);
    EXPECT_FALSE(pages[i].names.empty()) << "page " << i;
    EXPECT_EQ(pages[i].total, all - names.size()) << "page " << i;
    names.insert(names.end(), pages[i].names.begin(), pages[i].names.end());
  }
  return names;
}

const std::vector<std::wstring> kAllNames = {L"user1", L"user2", L"user3", L"user4", L"user5"};

TEST(NetUserEnum, PagesHoldWhatFitsAndResumeWhereTheyEnded) {
  CurrentMachine machine(nlohmann::json::parse(kMachine));
  std::vector<Page> whole = userPages(MAX_PREFERRED_LENGTH);
  ASSERT_EQ(whole.size(), 1u);
  EXPECT_EQ(namesOf(whole, 5), kAllNames);

  // Smaller than one record (the collector asks for 100 bytes): one record a page.
  for (DWORD preferred : {0u, 1u, 100u}) {
    std::vector<Page> pages = userPages(preferred);
    EXPECT_EQ(pages.size(), 5u) << preferred;
    EXPECT_EQ(namesOf(pages, 5), kAllNames) << preferred;
  }

  // The smallest length that takes two records, strings counted: two a page, and one fewer
  // byte takes one.
  DWORD low = 1, high = 1 << 16;
  while (low < high) {
    DWORD middle = low + (high - low) / 2;
    if (userPages(middle).front().names.size() >= 2)
      high = middle;
    else
      low = middle + 1;
  }
  const DWORD two = low;
  std::size_t leastRecord = sizeof(USER_INFO_3);
  for (const wchar_t* text : {L"user2", L"Name Two", L"secnd", L"C:\\Users\\user2"})
    leastRecord += (std::wcslen(text) + 1) * sizeof(WCHAR);
  EXPECT_GE(two, 2 * leastRecord);
  std::vector<Page> pages = userPages(two);
  EXPECT_EQ(pages.size(), 3u);
  EXPECT_EQ(namesOf(pages, 5), kAllNames);
  EXPECT_EQ(userPages(two - 1).size(), 5u);
}

TEST(NetUserEnum, AnswersLevelsFiltersAndServers) {
  CurrentMachine machine(nlohmann::json::parse(kMachine));
  LPBYTE buffer = reinterpret_cast<LPBYTE>(&buffer);
  DWORD read = 7, total = 7, resume = 0;
  for (DWORD level : {0u, 1u, 2u, 4u, 10u})
    EXPECT_EQ(NetUserEnum(nullptr, level, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, &resume),
              static_cast<DWORD>(ERROR_INVALID_LEVEL));
  EXPECT_EQ(buffer, reinterpret_cast<LPBYTE>(&buffer));
  EXPECT_EQ(NetUserEnum(nullptr, 3, 0x40, &buffer, MAX_PREFERRED_LENGTH, &read, &total, &resume),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(NetUserEnum(nullptr, 3, 0, nullptr, MAX_PREFERRED_LENGTH, &read, &total, &resume),
            static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(NetUserEnum(L"\\\\OTHER", 3, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, &resume),
            static_cast<DWORD>(ERROR_BAD_NETPATH));

  // user3 is a workstation trust account (UF_WORKSTATION_TRUST_ACCOUNT); user4 has the
  // flags of a new account.
  std::vector<Page> normal = userPages(MAX_PREFERRED_LENGTH, FILTER_NORMAL_ACCOUNT);
  EXPECT_EQ(namesOf(normal, 4),
            (std::vector<std::wstring>{L"user1", L"user2", L"user4", L"user5"}));

  ASSERT_EQ(NetUserEnum(L"\\\\wks-1", 3, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
            kSuccess);
  EXPECT_EQ(read, 5u);
  NetApiBufferFree(buffer);
}

TEST(NetUserEnum, RecordsCarryTheAccounts) {
  CurrentMachine machine(nlohmann::json::parse(kMachine));
  LPBYTE buffer = nullptr;
  DWORD read = 0, total = 0;
  ASSERT_EQ(NetUserEnum(nullptr, 3, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
            kSuccess);
  const USER_INFO_3* users = reinterpret_cast<USER_INFO_3*>(buffer);
  EXPECT_EQ(std::wstring(users[0].usri3_full_name), L"Jos\u00e9 One");
  EXPECT_EQ(std::wstring(users[0].usri3_comment), L"first");
  EXPECT_EQ(std::wstring(users[0].usri3_home_dir), L"C:\\Users\\user1");
  EXPECT_EQ(users[0].usri3_flags, 66049u);
  EXPECT_EQ(users[0].usri3_country_code, 49u);
  EXPECT_EQ(users[0].usri3_password_age, 100000u);
  EXPECT_EQ(users[0].usri3_last_logon, 1763800000u);
  EXPECT_EQ(users[1].usri3_password_expired, 1u);  // UF_PASSWORD_EXPIRED
  EXPECT_EQ(users[3].usri3_flags, 0x201u);
  EXPECT_EQ(users[3].usri3_last_logon, 0u);
  EXPECT_EQ(NetApiBufferFree(buffer), kSuccess);
  EXPECT_EQ(NetApiBufferFree(buffer), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(NetWkstaUserEnum, ListsTheUsersLoggedOn) {
  CurrentMachine machine(nlohmann::json::parse(kMachine));
  LPBYTE buffer = nullptr;
  DWORD read = 0, total = 0, resume = 0;
  EXPECT_EQ(NetWkstaUserEnum(nullptr, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, &resume),
            static_cast<DWORD>(ERROR_INVALID_LEVEL));
  ASSERT_EQ(NetWkstaUserEnum(nullptr, 1, &buffer, 1, &read, &total, &resume), kMoreData);
  EXPECT_EQ(read, 1u);
  EXPECT_EQ(total, 2u);
  const auto* first = reinterpret_cast<WKSTA_USER_INFO_1*>(buffer);
  EXPECT_EQ(std::wstring(first->wkui1_username), L"user1");
  EXPECT_EQ(std::wstring(first->wkui1_logon_domain), L"CORP");
  EXPECT_EQ(std::wstring(first->wkui1_oth_domains), L"EAST WEST");
  EXPECT_EQ(std::wstring(first->wkui1_logon_server), L"\\\\DC1");
  NetApiBufferFree(buffer);

  ASSERT_EQ(NetWkstaUserEnum(nullptr, 1, &buffer, 1, &read, &total, &resume), kSuccess);
  EXPECT_EQ(resume, 0u);
  const auto* second = reinterpret_cast<WKSTA_USER_INFO_1*>(buffer);
  EXPECT_EQ(std::wstring(second->wkui1_username), L"WKS-1$");
  NetApiBufferFree(buffer);
}

TEST(NetApi, FailsWithoutItsMembersAndAsInjected) {
  CurrentMachine machine(nlohmann::json::parse(R"({"fail": {"NetWkstaUserEnum": 5}})"));
  LPBYTE buffer = reinterpret_cast<LPBYTE>(&buffer);
  DWORD read = 0, total = 0;
  EXPECT_EQ(NetWkstaUserEnum(nullptr, 1, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
            5u);
  EXPECT_EQ(buffer, reinterpret_cast<LPBYTE>(&buffer));
  EXPECT_EQ(NetUserEnum(nullptr, 3, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
            static_cast<DWORD>(RPC_S_SERVER_UNAVAILABLE));
  EXPECT_EQ(buffer, nullptr);

  CurrentMachine empty(nlohmann::json::parse(R"({"users": []})"));
  EXPECT_EQ(NetWkstaUserEnum(nullptr, 1, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
            static_cast<DWORD>(NERR_WkstaNotStarted));
  EXPECT_EQ(NetUserEnum(nullptr, 3, 0, &buffer, MAX_PREFERRED_LENGTH, &read, &total, nullptr),
            kSuccess);
  EXPECT_EQ(buffer, nullptr);
  EXPECT_EQ(read, 0u);
}

}  // namespace
