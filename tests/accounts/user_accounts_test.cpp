#include <gtest/gtest.h>

#include "accounts/os_user_info.h"
#include "accounts/user_account_reader.h"
#include "plugin/system_information.h"
#include "tests/frame/plugin_test_support.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using json = nlohmann::json;
using Names = std::vector<std::string>;

json user(const std::string& name, const std::string& fullName = "", unsigned flags = 0x201) {
  return {{"name", name},  {"fullName", fullName}, {"comment", ""},    {"flags", flags},
          {"homeDir", ""}, {"countryCode", 0},     {"passwordAge", 0}, {"lastLogon", 0}};
}

json session(const std::string& name, const std::string& server,
             const std::string& domain = "CORP") {
  return {{"user", name}, {"domain", domain}, {"logonServer", server}};
}

// The text of a value, "<absent>" for a property the account lacks.
std::string text(const PropertyMap& account, const char* property) {
  auto found = account.find(property);
  return found == account.end() ? "<absent>" : static_cast<std::string>(found->second);
}

// AccountEnabled, RequiresPassword, UserCanChangePassword, PasswordExpired.
std::string flags(const PropertyMap& account) {
  return text(account, "AccountEnabled") + " " + text(account, "RequiresPassword") + " " +
         text(account, "UserCanChangePassword") + " " + text(account, "PasswordExpired");
}

Names propertyNames(const PropertyMap& account) {
  Names names;
  for (const auto& entry : account) names.push_back(entry.first);
  return names;
}

class Accounts : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }

  AccountList accountsOn(const json& description) {
    RegistryMachine machine("", description);
    return UserAccountReader().getAccounts();
  }
  size_t linesWith(const std::string& message) {
    size_t count = 0;
    for (const auto& line : log.lines()) count += line.second == message;
    return count;
  }

  LogCapture log;
};

TEST_F(Accounts, LoggedOnLocalAccountsCarryTheirFacts) {
  // Each flag turns its boolean over on its own.
  json alice = user("alice", "Alice Doe", 0x201 | 0x20);
  alice.update({{"countryCode", 49},
                {"passwordAge", 100000},
                {"lastLogon", 1763800000},
                {"homeDir", "C:\\Users\\alice"}});
  json dave = user("dave", "", 0x2 | 0x40 | 0x800000);
  dave["comment"] = "Operator";
  const AccountList accounts =
      accountsOn({{"computerName", "WKS-7"},
                  {"environment", {{"USERNAME", "dave"}}},
                  {"users", {alice, user("bob"), user("Carol"), dave}},
                  // The first session of a user counts; names match with case.
                  {"loggedOn",
                   {session("alice", "\\\\DC1"), session("alice", "\\\\DC2", "OTHER"),
                    session("carol", "x"), session("dave", "WKS-7", "WKS-7")}}});
  ASSERT_EQ(accounts.size(), 2u);

  const PropertyMap& first = accounts[0];
  EXPECT_EQ(text(first, "UserID"), "alice");
  EXPECT_EQ(text(first, "Name"), "Alice Doe");
  EXPECT_FALSE(first.at("LastLogon").IsNull());
  EXPECT_EQ(text(first, "Host"), "WKS-7");
  EXPECT_EQ(text(first, "LocalityName"), "49");
  // An empty comment is an array of one empty text.
  ASSERT_TRUE(first.at("Descriptions").IsArray());
  EXPECT_EQ(first.at("Descriptions").GetElements(), std::vector<TCIMValue>{TCIMValue("")});
  EXPECT_EQ(text(first, "PasswordAge"), "00000001034640.000000:000");
  EXPECT_EQ(text(first, "HomeDirectory"), "C:\\Users\\alice");
  EXPECT_EQ(text(first, "LogonServer"), "\\\\DC1");
  EXPECT_EQ(text(first, "Domain"), "CORP");
  EXPECT_EQ(flags(first), "true false true false");

  // Without a full name or a logon the user name stands in and LastLogon
  // is left out.
  const PropertyMap& second = accounts[1];
  EXPECT_EQ(text(second, "Name"), "dave");
  EXPECT_EQ(text(second, "LastLogon"), "<absent>");
  EXPECT_EQ(text(second, "Descriptions"), "Operator");
  EXPECT_EQ(flags(second), "false true false true");
  EXPECT_EQ(second.size(), 13u);
  // Each account the first route takes converts its logon time, 0 too.
  EXPECT_EQ(linesWith("GetInfo::getCIMDateTime -> dateAsLongMsg"), 2u);
}

TEST_F(Accounts, PagesStopOnceSixteenRecordsWereExamined) {
  // Every other account is logged on, and the present user is one of those
  // behind the limit: records skipped count towards it as well.
  json users = json::array(), sessions = json::array();
  for (int n = 1; n <= 20; ++n) {
    const std::string name = (n < 10 ? "u0" : "u") + std::to_string(n);
    users.push_back(user(name));
    if (n % 2 == 1 || n == 18) sessions.push_back(session(name, "S" + std::to_string(n)));
  }
  const AccountList accounts = accountsOn(
      {{"users", users},
       {"loggedOn", sessions},
       {"environment",
        {{"USERNAME", "u18"}, {"USERPROFILE", "C:\\Users\\u18"}, {"USERDOMAIN", "HOME"}}}});
  Names userIds;
  for (const PropertyMap& account : accounts) userIds.push_back(text(account, "UserID"));
  EXPECT_EQ(userIds, (Names{"u01", "u03", "u05", "u07", "u09", "u11", "u13", "u15", "u18"}));
  // The user behind the limit comes from the environment, with the logon
  // server of the last account the first route added.
  const PropertyMap& present = accounts.back();
  EXPECT_EQ(propertyNames(present),
            (Names{"Domain", "HomeDirectory", "LogonServer", "Name", "UserID"}));
  EXPECT_EQ(text(present, "HomeDirectory"), "C:\\Users\\u18");
  EXPECT_EQ(text(present, "Domain"), "HOME");
  EXPECT_EQ(text(present, "LogonServer"), "S15");
}

TEST_F(Accounts, TheEnvironmentSuppliesThePresentUserWhenNoNameMatches) {
  const json environment = {{"USERNAME", "alice"}, {"USERDOMAIN", "CORP"}};
  // A full name of its own keeps the account from matching: the user
  // stands twice, the second time from the environment.
  AccountList accounts = accountsOn({{"environment", environment},
                                     {"users", json::array({user("alice", "Alice Doe")})},
                                     {"loggedOn", json::array({session("alice", "\\\\DC1")})}});
  ASSERT_EQ(accounts.size(), 2u);
  EXPECT_EQ(text(accounts[1], "Name"), "alice");
  EXPECT_EQ(text(accounts[1], "LogonServer"), "\\\\DC1");
  EXPECT_EQ(text(accounts[1], "HomeDirectory"), "");

  // The Net API failing: logged on, but no account of the first route.
  accounts = accountsOn({{"environment", environment},
                         {"users", json::array({user("alice")})},
                         {"loggedOn", json::array({session("alice", "\\\\DC1")})},
                         {"fail", {{"NetUserEnum", 5}}}});
  ASSERT_EQ(accounts.size(), 1u);
  EXPECT_EQ(text(accounts[0], "LogonServer"), "");

  // Nobody logged on: no account survives, and there is no logon server.
  accounts = accountsOn({{"environment", environment},
                         {"users", json::array({user("alice")})},
                         {"loggedOn", json::array({session("alice", "\\\\DC1")})},
                         {"fail", {{"NetWkstaUserEnum", 5}}}});
  ASSERT_EQ(accounts.size(), 1u);
  EXPECT_EQ(propertyNames(accounts[0]), (Names{"Domain", "HomeDirectory", "Name", "UserID"}));

  // Without USERNAME the present user is nameless; the route says nothing.
  log.clear();
  accounts = accountsOn(json::object());
  ASSERT_EQ(accounts.size(), 1u);
  EXPECT_EQ(text(accounts[0], "UserID"), "");
  EXPECT_EQ(text(accounts[0], "Name"), "");
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(Accounts, InstancesNameTheirSystemAndAFailureZeroesTheCount) {
  auto ns = makeSchemaNamespace();
  const json description = {
      {"computerName", "WKS-7"},
      {"environment", {{"USERNAME", "alice"}}},
      {"users",
       {user("alice", "Alice Doe"), user("bob", "Same"), user("carl", "Same"), user("dora")}},
      {"loggedOn",
       {session("alice", "DC"), session("bob", "DC"), session("carl", "DC"),
        session("dora", "DC")}}};
  RegistryMachine machine("", description);
  // Two accounts with one Name share an object path: the second fails,
  // and what was committed before it stays.
  EXPECT_EQ(OSUserInfo(ns->GetClass("QELTO_Account", {})).getCIMInstances(), 0);
  EXPECT_EQ(propertyValues(*ns, "Name"), (Names{"Alice Doe", "Same"}));
  EXPECT_EQ(propertyValues(*ns, "CreationClassName"), (Names{"QELTO_Account", "QELTO_Account"}));
  EXPECT_EQ(propertyValues(*ns, "SystemCreationClassName"),
            (Names{"QELTO_ComputerSystem", "QELTO_ComputerSystem"}));
  EXPECT_EQ(propertyValues(*ns, "SystemName"), (Names{"WKS-7", "WKS-7"}));
  EXPECT_EQ(log.lines().back(),
            (std::pair<int, std::string>{3,
                                         "OSUserInfo::getCIMInstances Encountered an error"
                                         "\t\t\t\t\t\t\t\t\tgenerating CIM instance. Error "
                                         "Code: 11"}));

  ns->ClearInstances({});
  json single = description;
  single["users"] = json::array({user("alice", "Alice Doe")});
  RegistryMachine distinct("", single);
  EXPECT_EQ(SystemInformation(ns).collectClass(ns->GetClass("QELTO_Account", {})), 2);
  EXPECT_EQ(propertyValues(*ns, "Name"), (Names{"Alice Doe", "alice"}));
}

}  // namespace
}  // namespace installedapps_col
