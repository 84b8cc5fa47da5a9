#include <gtest/gtest.h>

#include "tests/vrxcore/test_schema.h"

namespace NZARVEK20 {
namespace {

EVRXStatusCode codeOf(const std::function<void()>& step) {
  try {
    step();
  } catch (const TVRXException& e) {
    return e.GetStatusCode();
  }
  return VRX_OK;
}

boost::shared_ptr<ICIMInstance> setting(ICIMNamespace& ns, const char* className, const char* id) {
  auto instance = ns.GetClass(className, {})->AllocateInstance({});
  instance->SetPropertyValue("SettingID", TCIMValue(id), {});
  instance->Commit({});
  return instance;
}

std::vector<std::string> ids(ICIMClass& cimClass, bool deep) {
  std::vector<boost::shared_ptr<ICIMInstance>> found;
  cimClass.EnumerateInstances(TAddToVectorCallback<ICIMInstance>(found), deep, {});
  std::vector<std::string> result;
  for (const auto& instance : found)
    result.push_back(instance->GetProperty("SettingID", {})->GetValue({}));
  return result;
}

TEST(Repository, ClassesAreFoundWithoutRegardToCaseAndKeepTheirKeyOrder) {
  auto ns = makeTestNamespace();
  auto child = ns->GetClass("t_systemsetting", TCIMOptions{{"nspID", TCIMValue("plugin")}});
  EXPECT_EQ(child, ns->GetClass("T_SystemSetting", {}));
  EXPECT_EQ(child->GetName({}), "T_SystemSetting");
  EXPECT_TRUE(child->IsSubclassOf("t_setting", {}));
  EXPECT_TRUE(child->GetProperty("settingid", {})->IsKey({}));  // inherited
  EXPECT_EQ(codeOf([&] { ns->GetClass("T_Nothing", {}); }), VRX_INVALID_CLASS);

  std::vector<const std::string*> keys;
  ns->GetClass("T_System", {})->EnumerateKeyNames(TAddKeyNamesToVectorCallback(keys), {});
  std::vector<std::string> names;
  for (const std::string* key : keys) names.push_back(*key);
  EXPECT_EQ(names, (std::vector<std::string>{"CreationClassName", "Name", "Number"}));
}

TEST(Repository, InstancesConvertValuesAndRefuseWhatTheClassLacks) {
  auto ns = makeTestNamespace();
  auto instance = ns->GetClass("T_SystemSetting", {})->AllocateInstance({});
  EXPECT_TRUE(instance->GetProperty("Weight", {})->GetValue({}).IsNull());
  EXPECT_EQ(static_cast<std::string>(instance->GetProperty("Weight", {})->GetValue({})), "");
  EXPECT_EQ(instance->GetProperty("SettingValue", {})->GetValue({}), TCIMValue("unset"));

  instance->SetPropertyValue("weight", TCIMValue(12u), {});
  EXPECT_EQ(instance->GetProperty("Weight", {})->GetValue({}),
            TCIMValue(static_cast<unsigned short>(12)));
  EXPECT_EQ(codeOf([&] { instance->SetPropertyValue("Weight", TCIMValue(70000u), {}); }),
            VRX_TYPE_MISMATCH);
  EXPECT_EQ(codeOf([&] { instance->SetPropertyValue("Weight", TCIMValue("12"), {}); }),
            VRX_TYPE_MISMATCH);
  EXPECT_EQ(codeOf([&] { instance->SetPropertyValue("Tags", TCIMValue("one"), {}); }),
            VRX_TYPE_MISMATCH);
  EXPECT_EQ(codeOf([&] { instance->SetPropertyValue("Nope", TCIMValue("x"), {}); }),
            VRX_NO_SUCH_PROPERTY);
  EXPECT_EQ(codeOf([&] { instance->GetProperty("Nope", {}); }), VRX_NO_SUCH_PROPERTY);
  instance->SetPropertyValue("Weight", TCIMValue(), {});
  EXPECT_TRUE(instance->GetProperty("Weight", {})->GetValue({}).IsNull());
  EXPECT_EQ(codeOf([&] { ns->GetClass("T_Setting", {})->AllocateInstance({}); }),
            VRX_ABSTRACT_CLASS);
}

TEST(Repository, CommitNeedsEveryKeyAndANewPath) {
  auto ns = makeTestNamespace();
  auto system = ns->GetClass("T_System", {});
  auto instance = system->AllocateInstance({});
  instance->SetPropertyValue("CreationClassName", TCIMValue("T_System"), {});
  instance->SetPropertyValue("Name", TCIMValue("WKS"), {});
  EXPECT_EQ(codeOf([&] { instance->Commit({}); }), VRX_KEY_MISSING);
  EXPECT_TRUE(ns->GetInstances().empty());
  instance->SetPropertyValue("Number", TCIMValue(1u), {});
  instance->Commit({});
  EXPECT_EQ(codeOf([&] { instance->SetPropertyValue("Flag", TCIMValue(true), {}); }),
            VRX_ALREADY_COMMITTED);

  auto twin = system->AllocateInstance({});
  twin->SetPropertyValue("CreationClassName", TCIMValue("T_System"), {});
  twin->SetPropertyValue("Name", TCIMValue("WKS"), {});
  twin->SetPropertyValue("Number", TCIMValue(1u), {});
  EXPECT_EQ(codeOf([&] { twin->Commit({}); }), VRX_ALREADY_EXISTS);
  twin->SetPropertyValue("Name", TCIMValue("wks"), {});  // values keep their case
  twin->Commit({});
  EXPECT_EQ(ns->GetInstances().size(), 2u);

  const TCIMReference path = instance->GetReference({});
  EXPECT_EQ(path.ToString(), "T_System.CreationClassName=\"T_System\",Name=\"WKS\",Number=1");
  EXPECT_EQ(ns->GetInstance(TCIMReference::Parse("t_system.NAME=\"WKS\",number=1,"
                                                 "creationclassname=\"T_System\""),
                            {}),
            instance);
  ns->DeleteInstance(path, {});
  EXPECT_EQ(codeOf([&] { ns->GetInstance(path, {}); }), VRX_NOT_FOUND);
  EXPECT_EQ(ns->GetInstances().size(), 1u);
}

TEST(Repository, PathsFindTheirInstancesThroughModifyDeleteAndClear) {
  auto ns = makeTestNamespace();
  setting(*ns, "T_UserSetting", "A");
  auto b = setting(*ns, "T_UserSetting", "B");
  setting(*ns, "T_UserSetting", "C");
  const TCIMReference pathOfB = b->GetReference({});

  auto newB = ns->GetClass("T_UserSetting", {})->AllocateInstance({});
  newB->SetPropertyValue("SettingID", TCIMValue("B"), {});
  newB->SetPropertyValue("SettingValue", TCIMValue("new"), {});
  ns->ModifyInstance(newB, {});
  EXPECT_EQ(ns->GetInstance(pathOfB, {}), newB);
  EXPECT_EQ(ns->GetInstances()[1], newB);
  EXPECT_EQ(codeOf([&] { setting(*ns, "T_UserSetting", "B"); }), VRX_ALREADY_EXISTS);

  ns->DeleteInstance(pathOfB, {});
  EXPECT_EQ(ids(*ns->GetClass("T_Setting", {}), true), (std::vector<std::string>{"A", "C"}));
  EXPECT_EQ(codeOf([&] { ns->DeleteInstance(pathOfB, {}); }), VRX_NOT_FOUND);
  setting(*ns, "T_UserSetting", "B");
  EXPECT_EQ(ids(*ns->GetClass("T_Setting", {}), true), (std::vector<std::string>{"A", "C", "B"}));

  ns->ClearInstances({});
  EXPECT_EQ(codeOf([&] { ns->GetInstance(pathOfB, {}); }), VRX_NOT_FOUND);
  setting(*ns, "T_UserSetting", "B");
  EXPECT_EQ(ns->GetInstances().size(), 1u);
}

// Enough instances that the path index grows several times, with deletions among them: every
// path still finds its own instance, a deleted one none, and a deleted path can be committed again.
TEST(Repository, ManyPathsStayFoundAsTheIndexGrowsAndLosesSome) {
  auto ns = makeTestNamespace();
  const int count = 3000;
  std::vector<TCIMReference> paths;
  for (int i = 0; i < count; ++i)
    paths.push_back(setting(*ns, "T_UserSetting", std::to_string(i).c_str())->GetReference({}));
  for (int i = 0; i < count; i += 3) ns->DeleteInstance(paths[i], {});
  for (int i = 0; i < count; ++i) {
    if (i % 3 == 0) {
      ASSERT_EQ(codeOf([&] { ns->GetInstance(paths[i], {}); }), VRX_NOT_FOUND) << i;
      continue;
    }
    auto found = ns->GetInstance(paths[i], {});
    ASSERT_EQ(static_cast<std::string>(found->GetProperty("SettingID", {})->GetValue({})),
              std::to_string(i));
  }
  for (int i = 0; i < count; i += 3) setting(*ns, "T_UserSetting", std::to_string(i).c_str());
  EXPECT_EQ(ns->GetInstances().size(), static_cast<size_t>(count));
  EXPECT_EQ(codeOf([&] { setting(*ns, "T_UserSetting", "2997"); }), VRX_ALREADY_EXISTS);
  EXPECT_EQ(codeOf([&] { setting(*ns, "T_UserSetting", "2998"); }), VRX_ALREADY_EXISTS);
}

TEST(Repository, PropertiesHandedOutKeepTheirInstanceAlive) {
  auto instance = makeTestNamespace()->GetClass("T_UserSetting", {})->AllocateInstance({});
  instance->SetPropertyValue("SettingID", TCIMValue("PATH"), {});
  auto id = instance->GetProperty("settingid", {});
  std::vector<boost::shared_ptr<ICIMProperty>> all;
  instance->EnumerateProperties(TAddToVectorCallback<ICIMProperty>(all), {});
  const boost::weak_ptr<ICIMInstance> watched = instance;
  instance.reset();
  EXPECT_EQ(id->GetName({}), "SettingID");
  EXPECT_EQ(id->GetValue({}).GetString(), "PATH");
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[1]->GetValue({}).GetString(), "unset");
  id.reset();
  EXPECT_FALSE(watched.expired());
  all.clear();
  EXPECT_TRUE(watched.expired());
}

TEST(Repository, DeepEnumerationFindsSubclassesInCommitOrder) {
  auto ns = makeTestNamespace();
  setting(*ns, "T_SystemSetting", "PATH");
  setting(*ns, "T_UserSetting", "TEMP");
  setting(*ns, "T_SystemSetting", "OS");
  auto parent = ns->GetClass("T_Setting", {});
  EXPECT_EQ(ids(*parent, true), (std::vector<std::string>{"PATH", "TEMP", "OS"}));
  EXPECT_TRUE(ids(*parent, false).empty());
  EXPECT_EQ(ids(*ns->GetClass("T_SystemSetting", {}), true),
            (std::vector<std::string>{"PATH", "OS"}));
  // The same key in two sibling classes names two instances.
  setting(*ns, "T_UserSetting", "PATH");
  EXPECT_EQ(codeOf([&] { setting(*ns, "T_UserSetting", "PATH"); }), VRX_ALREADY_EXISTS);

  std::vector<boost::shared_ptr<ICIMInstance>> queried;
  ns->ExecuteQuery("select * FROM T_Setting", TAddToVectorCallback<ICIMInstance>(queried), {});
  EXPECT_EQ(queried.size(), 4u);
  EXPECT_EQ(codeOf([&] {
              ns->ExecuteQuery("SELECT Name FROM T_Setting",
                               TAddToVectorCallback<ICIMInstance>(queried), {});
            }),
            VRX_NOT_SUPPORTED);
}

TEST(Repository, ReferencesPointAtCommittedInstances) {
  auto ns = makeTestNamespace();
  auto system = ns->GetClass("T_System", {})->AllocateInstance({});
  system->SetPropertyValue("CreationClassName", TCIMValue("T_System"), {});
  system->SetPropertyValue("Name", TCIMValue("W\"1"), {});
  system->SetPropertyValue("Number", TCIMValue(2u), {});
  system->Commit({});
  auto path = setting(*ns, "T_UserSetting", "TEMP")->GetReference({});

  auto link = ns->GetClass("T_SystemSettings", {})->AllocateInstance({});
  link->SetPropertyValue("Element", TCIMValue(system->GetReference({})), {});
  link->SetPropertyValue("Setting", TCIMValue(path), {});
  link->Commit({});
  EXPECT_EQ(link->GetReference({}).ToString(),
            "T_SystemSettings.Element=\"T_System.CreationClassName=\\\"T_System\\\","
            "Name=\\\"W\\\\\\\"1\\\",Number=2\",Setting=\"T_UserSetting.SettingID=\\\"TEMP\\\"\"");
  EXPECT_EQ(codeOf([&] { link->SetPropertyValue("Setting", TCIMValue("TEMP"), {}); }),
            VRX_ALREADY_COMMITTED);
}

TEST(Repository, SubscribersSeeEveryCommit) {
  auto ns = makeTestNamespace();
  std::vector<std::string> seen;
  ns->Subscribe(
      [&](boost::shared_ptr<ICIMInstance> instance) {
        seen.push_back(instance->GetClass({})->GetName({}));
        return true;
      },
      {});
  setting(*ns, "T_UserSetting", "A");
  setting(*ns, "T_SystemSetting", "B");
  EXPECT_EQ(seen, (std::vector<std::string>{"T_UserSetting", "T_SystemSetting"}));
}

}  // namespace
}  // namespace NZARVEK20
