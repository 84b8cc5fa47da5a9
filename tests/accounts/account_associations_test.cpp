#include <gtest/gtest.h>

#include "accounts/account_on_system.h"
#include "accounts/current_account_on_system.h"
#include "plugin/system_information.h"
#include "tests/frame/plugin_test_support.h"
#include "tests/vrxcore/test_schema.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using json = nlohmann::json;
using Names = std::vector<std::string>;
using Lines = std::vector<std::pair<int, std::string>>;

class AccountAssociations : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }

  void commit(const std::string& className, const PropertyMap& values) {
    auto instance = ns->GetClass(className, {})->AllocateInstance({});
    for (const auto& value : values) instance->SetPropertyValue(value.first, value.second, {});
    instance->Commit({});
  }
  void commitSystem(const std::string& name) {
    commit("QELTO_ComputerSystem",
           {{"CreationClassName", TCIMValue("QELTO_ComputerSystem")}, {"Name", TCIMValue(name)}});
  }
  void commitAccount(const std::string& userId, const std::string& name) {
    commit("QELTO_Account", {{"UserID", TCIMValue(userId)},
                             {"Name", TCIMValue(name)},
                             {"CreationClassName", TCIMValue("QELTO_Account")},
                             {"SystemCreationClassName", TCIMValue("QELTO_ComputerSystem")},
                             {"SystemName", TCIMValue("WKS")}});
  }
  int collect(const std::string& className) {
    return SystemInformation(ns).collectClass(ns->GetClass(className, {}));
  }
  // "group -> part" for each association of `className`, by Name.
  Names pairs(const std::string& className) {
    std::vector<boost::shared_ptr<ICIMInstance>> links;
    ns->GetClass(className, {})
        ->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(links), true, {});
    Names result;
    for (const auto& link : links)
      result.push_back(nameOf(link, "GroupComponent") + " -> " + nameOf(link, "PartComponent"));
    return result;
  }
  std::string nameOf(const boost::shared_ptr<ICIMInstance>& link, const char* role) {
    const TCIMValue& reference = link->GetProperty(role, {})->GetValue({});
    return ns->GetInstance(reference.GetReference(), {})->GetProperty("Name", {})->GetValue({});
  }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(AccountAssociations, EveryAccountJoinsEverySystem) {
  commitAccount("alice", "Alice Doe");
  commitAccount("bob", "bob");
  EXPECT_EQ(collect("QELTO_AccountOnSystem"), 0);
  commitSystem("WKS");
  commitSystem("SRV");
  EXPECT_EQ(collect("QELTO_AccountOnSystem"), 4);
  EXPECT_EQ(pairs("QELTO_AccountOnSystem"),
            (Names{"WKS -> Alice Doe", "WKS -> bob", "SRV -> Alice Doe", "SRV -> bob"}));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(AccountAssociations, ThePresentUserJoinsEachSystemOnceWithoutRegardToCase) {
  RegistryMachine machine("", {{"userName", "ALICE"}});
  commitSystem("WKS");
  commitSystem("SRV");
  commitAccount("bob", "bob");
  commitAccount("Alice", "Alice Doe");
  // The same user again, as the environment adds it.
  commitAccount("alice", "alice");
  EXPECT_EQ(collect("QELTO_CurrentAccountOnSystem"), 2);
  EXPECT_EQ(pairs("QELTO_CurrentAccountOnSystem"), (Names{"WKS -> Alice Doe", "SRV -> Alice Doe"}));
  EXPECT_TRUE(log.lines().empty());

  // A second run would make the same associations: the host refuses the
  // first, and that failure goes on to the dispatcher.
  EXPECT_EQ(collect("QELTO_CurrentAccountOnSystem"), 0);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.lines()[0].second.rfind("Exception caught Collecting data for class "
                                        "QELTO_CurrentAccountOnSystem ",
                                        0),
            0u);
}

TEST_F(AccountAssociations, WithoutAUserNameOnlyANamelessAccountMatches) {
  RegistryMachine machine("", json::object());
  commitSystem("WKS");
  commitAccount("bob", "bob");
  EXPECT_EQ(collect("QELTO_CurrentAccountOnSystem"), 0);
  commitAccount("", "nameless");
  EXPECT_EQ(collect("QELTO_CurrentAccountOnSystem"), 1);
  EXPECT_EQ(pairs("QELTO_CurrentAccountOnSystem"), Names{"WKS -> nameless"});
}

TEST_F(AccountAssociations, AccountsOfAClassWithoutUserIdArePassedOver) {
  // A schema whose accounts have no UserID: reading it fails with status
  // 15 for each account, which is no failure of the collector.
  auto bare = TRepositoryNamespace::Create("root/bare");
  LoadMof(*bare, mof::parseMof(std::string(kTestQualifiers) + R"(
class QELTO_ComputerSystem { [Key] string Name; };
class QELTO_Account { [Key] string Name; };
[Association] class QELTO_CurrentAccountOnSystem {
  [Key] QELTO_ComputerSystem REF GroupComponent; [Key] QELTO_Account REF PartComponent; };)",
                               "bare.mof"));
  for (const char* className : {"QELTO_ComputerSystem", "QELTO_Account"}) {
    auto instance = bare->GetClass(className, {})->AllocateInstance({});
    instance->SetPropertyValue("Name", TCIMValue("x"), {});
    instance->Commit({});
  }
  RegistryMachine machine("", {{"userName", "x"}});
  CurrentAccountOnSystem collector(bare->GetClass("QELTO_CurrentAccountOnSystem", {}));
  EXPECT_EQ(collector.buildCIMAssociation(bare), 0);
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace installedapps_col
