#include <gtest/gtest.h>

#include "components/component_associations.h"
#include "plugin/system_information.h"
#include "tests/frame/plugin_test_support.h"
#include "tests/vrxcore/test_schema.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Pairs = std::vector<std::pair<std::string, std::string>>;

// Components committed straight into the store, so that the tree sees
// exactly these instances in this order.
class ComponentTree : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  int collect(const std::string& className) {
    return SystemInformation(ns).collectClass(ns->GetClass(className, {}));
  }
  void component(const std::string& name, const std::string& inf, const char* parent) {
    auto instance = ns->GetClass("QELTO_OSComponent", {})->AllocateInstance({});
    instance->SetPropertyValue("Name", TCIMValue(name), {});
    instance->SetPropertyValue("INFName", TCIMValue(inf), {});
    if (parent) instance->SetPropertyValue("Parent", TCIMValue(parent), {});
    instance->Commit({});
  }
  void operatingSystem(const std::string& name) {
    auto os = ns->GetClass("QELTO_OperatingSystem", {})->AllocateInstance({});
    for (const char* key : {"CSCreationClassName", "CSName", "CreationClassName"})
      os->SetPropertyValue(key, TCIMValue("x"), {});
    os->SetPropertyValue("Name", TCIMValue(name), {});
    os->Commit({});
  }
  // Group and part of each association of `className`, as their Name and
  // INFName ("calc@base.inf") or, for an operating system, its Name.
  Pairs links(const std::string& className) {
    Pairs found;
    for (const auto& instance : ns->GetInstances())
      if (instance->GetClass({})->GetName({}) == className)
        found.push_back({end(instance, "GroupComponent"), end(instance, "PartComponent")});
    return found;
  }
  std::string end(const boost::shared_ptr<ICIMInstance>& association, const char* role) {
    const std::string path = association->GetProperty(role, {})->GetValue({});
    for (const auto& instance : ns->GetInstances()) {
      if (instance->GetReference({}).ToString() != path) continue;
      const std::string name = instance->GetProperty("Name", {})->GetValue({});
      if (instance->GetClass({})->GetName({}) == "QELTO_OperatingSystem") return name;
      return name + "@" +
             static_cast<std::string>(instance->GetProperty("INFName", {})->GetValue({}));
    }
    return "?";
  }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(ComponentTree, EveryOperatingSystemHoldsEveryTopLevelComponent) {
  EXPECT_EQ(collect("QELTO_OSBaseComponent"), 0);
  EXPECT_EQ(collect("QELTO_OSSubComponent"), 0);
  component("AccessUtil", "a.inf", "");
  EXPECT_EQ(collect("QELTO_OSBaseComponent"), 0);  // no operating system yet
  operatingSystem("first");
  operatingSystem("second");
  component("calc", "a.inf", "AccessUtil");
  component("ntbackup", "", nullptr);  // Parent never set reads as empty
  component("iis", "iis.inf", "");
  EXPECT_EQ(collect("QELTO_OSBaseComponent"), 6);
  EXPECT_EQ(links("QELTO_OSBaseComponent"), (Pairs{{"first", "AccessUtil@a.inf"},
                                                   {"first", "ntbackup@"},
                                                   {"first", "iis@iis.inf"},
                                                   {"second", "AccessUtil@a.inf"},
                                                   {"second", "ntbackup@"},
                                                   {"second", "iis@iis.inf"}}));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(ComponentTree, EachChildGoesUnderTheFirstComponentOfItsParentsName) {
  component("AccessOpt", "a.inf", "AccessUtil");
  component("AccessUtil", "a.inf", "");
  component("calc", "a.inf", "accessopt");
  component("Games", "games.inf", "ACCESSUTIL");
  component("games", "igames.inf", "");  // a second of that name gets no children
  component("freecell", "games.inf", "Games");
  component("zonegames", "igames.inf", "games");
  component("orphan", "x.inf", "Nowhere");
  component("loop", "x.inf", "LOOP");
  EXPECT_EQ(collect("QELTO_OSSubComponent"), 6);
  EXPECT_EQ(links("QELTO_OSSubComponent"), (Pairs{{"AccessUtil@a.inf", "AccessOpt@a.inf"},
                                                  {"AccessOpt@a.inf", "calc@a.inf"},
                                                  {"AccessUtil@a.inf", "Games@games.inf"},
                                                  {"Games@games.inf", "freecell@games.inf"},
                                                  {"Games@games.inf", "zonegames@igames.inf"},
                                                  {"loop@x.inf", "loop@x.inf"}}));
  EXPECT_EQ(log.lines(), (std::vector<std::pair<int, std::string>>{
                             {3,
                              "OSSubComponent::buildCIMAssociation During SoftwareFeatureComponent "
                              "Association can't find parent with ID Nowhere"}}));
}

TEST_F(ComponentTree, AFailureOtherThanAMissingPropertyEndsTheAssociationQuietly) {
  operatingSystem("XP");
  component("AccessUtil", "a.inf", "");
  component("calc", "a.inf", "AccessUtil");
  // The association of this pair is in the store already: its commit fails
  // with a duplicate path, and the collector stops there without a word.
  EXPECT_EQ(collect("QELTO_OSSubComponent"), 1);
  EXPECT_EQ(collect("QELTO_OSSubComponent"), 0);
  EXPECT_EQ(links("QELTO_OSSubComponent").size(), 1u);
  EXPECT_TRUE(log.lines().empty());
}

// Components of a class that lacks Name and Parent, among those of a subclass
// that has them: reading either fails with status 15 for that component,
// which passes it over, as a parent and as a child, and the loops go on.
TEST(ComponentTreeStatus15, ComponentsWithoutTheirPropertiesArePassedOver) {
  registeredPlugin();
  LogCapture log;
  auto bare = TRepositoryNamespace::Create("root/bare");
  LoadMof(*bare, mof::parseMof(std::string(kTestQualifiers) + R"(
class QELTO_OperatingSystem { [Key] string Name; };
class QELTO_OSComponent { [Key] string INFName; };
class T_NamedComponent : QELTO_OSComponent { string Name; string Parent; };
[Association] class QELTO_OSBaseComponent {
  [Key] QELTO_OperatingSystem REF GroupComponent; [Key] QELTO_OSComponent REF PartComponent; };
[Association] class QELTO_OSSubComponent {
  [Key] QELTO_OSComponent REF GroupComponent; [Key] QELTO_OSComponent REF PartComponent; };)",
                               "bare.mof"));
  const auto commit = [&](const char* className, const PropertyMap& values) {
    auto instance = bare->GetClass(className, {})->AllocateInstance({});
    for (const auto& value : values) instance->SetPropertyValue(value.first, value.second, {});
    instance->Commit({});
  };
  commit("QELTO_OperatingSystem", {{"Name", TCIMValue("XP")}});
  commit("QELTO_OSComponent", {{"INFName", TCIMValue("bare.inf")}});
  commit("T_NamedComponent",
         {{"INFName", TCIMValue("a.inf")}, {"Name", TCIMValue("Top")}, {"Parent", TCIMValue("")}});
  commit("T_NamedComponent", {{"INFName", TCIMValue("b.inf")},
                              {"Name", TCIMValue("Child")},
                              {"Parent", TCIMValue("top")}});
  const auto parts = [&](const char* className) {
    std::vector<std::string> found;
    for (const auto& instance : bare->GetInstances())
      if (instance->GetClass({})->GetName({}) == className)
        found.push_back(
            static_cast<std::string>(instance->GetProperty("PartComponent", {})->GetValue({})));
    return found;
  };
  EXPECT_EQ(OSBaseComponent(bare->GetClass("QELTO_OSBaseComponent", {})).buildCIMAssociation(bare),
            1);
  EXPECT_EQ(parts("QELTO_OSBaseComponent"),
            std::vector<std::string>{"T_NamedComponent.INFName=\"a.inf\""});
  EXPECT_EQ(OSSubComponent(bare->GetClass("QELTO_OSSubComponent", {})).buildCIMAssociation(bare),
            1);
  EXPECT_EQ(parts("QELTO_OSSubComponent"),
            std::vector<std::string>{"T_NamedComponent.INFName=\"b.inf\""});
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace installedapps_col
