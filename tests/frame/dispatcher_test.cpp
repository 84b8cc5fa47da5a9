#include <gtest/gtest.h>

#include <stdexcept>

#include "plugin/system_information.h"
#include "tests/frame/plugin_test_support.h"
#include "tests/vrxcore/test_schema.h"
#include "winapi/machine/machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Lines = std::vector<std::pair<int, std::string>>;

// Commits one T_System whose name is the class it was made for.
class SystemCollector : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int getCIMInstances() override {
    buildCIMInstance({{"CreationClassName", TCIMValue("T_System")},
                      {"Name", TCIMValue("WKS")},
                      {"Number", TCIMValue(1u)}});
    return 1;
  }
};

// Commits one instance, then fails the way a collector can fail.
template <class Failure>
class FailingCollector : public GetInfo {
 public:
  using GetInfo::GetInfo;
  int getCIMInstances() override {
    buildCIMInstance({{"SettingID", TCIMValue("first")}});
    throw Failure();
  }
};

struct StatusFailure : TVRXException {
  StatusFailure() : TVRXException(TVRXStatusCode(VRX_NO_SUCH_PROPERTY)) {}
};
struct RuntimeFailure : std::runtime_error {
  RuntimeFailure() : std::runtime_error("disk on fire") {}
};
struct OtherFailure {};

// The dispatcher with rows for the test classes in place of the collectors.
class TestDispatcher : public SystemInformation {
 public:
  explicit TestDispatcher(boost::shared_ptr<ICIMNamespace> ns) : SystemInformation(ns) {
    table["T_System"] = static_cast<Factory>(&TestDispatcher::make<SystemCollector>);
    table["T_SystemSettings"] = static_cast<Factory>(&TestDispatcher::make<SystemCollector>);
    table["T_UserSetting"] =
        static_cast<Factory>(&TestDispatcher::make<FailingCollector<StatusFailure>>);
    table["T_SystemSetting"] =
        static_cast<Factory>(&TestDispatcher::make<FailingCollector<RuntimeFailure>>);
  }
  void failSilently() {
    table["T_SystemSetting"] =
        static_cast<Factory>(&TestDispatcher::make<FailingCollector<OtherFailure>>);
  }

 private:
  template <class Collector>
  boost::shared_ptr<GetInfo> make(boost::shared_ptr<ICIMClass> cimClass) {
    return boost::shared_ptr<GetInfo>(new Collector(cimClass));
  }
};

class Dispatcher : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  int collect(const std::string& className) {
    return dispatcher.collectClass(ns->GetClass(className, {}));
  }
  std::vector<std::string> committedClasses() const {
    std::vector<std::string> names;
    for (const auto& instance : ns->GetInstances())
      names.push_back(instance->GetClass({})->GetName({}));
    return names;
  }

  boost::shared_ptr<TRepositoryNamespace> ns = makeTestNamespace();
  TestDispatcher dispatcher{ns};
  LogCapture log;
};

TEST_F(Dispatcher, OnlyExactTableNamesRunACollector) {
  // A class spelled in another case is another name to the table.
  auto other = TRepositoryNamespace::Create("root/other");
  LoadMof(*other,
          mof::parseMof(std::string(kTestQualifiers) + "class t_system { [Key] string Name; };",
                        "x.mof"));
  EXPECT_EQ(dispatcher.collectClass(other->GetClass("T_SYSTEM", {})), 0);
  EXPECT_EQ(collect("T_Setting"), 0);
  EXPECT_TRUE(other->GetInstances().empty());
  EXPECT_TRUE(ns->GetInstances().empty());
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(collect("T_System"), 1);
  EXPECT_EQ(committedClasses(), std::vector<std::string>{"T_System"});
}

TEST_F(Dispatcher, AFailingClassKeepsWhatItCommittedAndTheNextClassRuns) {
  EXPECT_EQ(collect("T_UserSetting"), 0);
  EXPECT_EQ(collect("T_SystemSetting"), 0);
  dispatcher.failSilently();
  ns->ClearInstances({});
  EXPECT_EQ(collect("T_SystemSetting"), 0);
  EXPECT_EQ(collect("T_System"), 1);
  EXPECT_EQ(committedClasses(), (std::vector<std::string>{"T_SystemSetting", "T_System"}));
  EXPECT_EQ(
      log.lines(),
      (Lines{{3,
              "Exception caught Collecting data for class T_UserSetting "
              "The class has no such property"},
             {3, "Exception caught Collecting data for class T_SystemSetting disk on fire"}}));
}

TEST_F(Dispatcher, TheSchemaDecidesBetweenInstancesAndAssociations) {
  // T_SystemSettings is an association: the collector's getCIMInstances
  // is not what runs, and the base buildCIMAssociation does nothing.
  EXPECT_EQ(collect("T_SystemSettings"), 0);
  EXPECT_TRUE(ns->GetInstances().empty());
}

TEST_F(Dispatcher, ApplicationsAreExcludedByAnyTextInTheSetting) {
  ::unsetenv("VRX_EXCLUDEAPPS");
  winapi::setCurrentMachine(winapi::Machine::fromDescription(nlohmann::json::object()));
  EXPECT_FALSE(SystemInformation::applicationsExcluded());
  for (const char* value : {"1", "0", "false", " "}) {
    winapi::setCurrentMachine(
        winapi::Machine::fromDescription({{"environment", {{"vrx_excludeapps", value}}}}));
    EXPECT_TRUE(SystemInformation::applicationsExcluded()) << value;
  }
  winapi::setCurrentMachine(
      winapi::Machine::fromDescription({{"environment", {{"VRX_EXCLUDEAPPS", ""}}}}));
  EXPECT_FALSE(SystemInformation::applicationsExcluded());
}

class FixUp : public Dispatcher {
 protected:
  // Runs buildCIMInstance for `className` with `values`, as a collector would.
  EVRXStatusCode build(const std::string& className, const PropertyMap& values) {
    GetInfo collector(ns->GetClass(className, {}));
    try {
      collector.buildCIMInstance(values);
    } catch (const TVRXException& e) {
      return e.GetStatusCode();
    }
    return VRX_OK;
  }
};

TEST_F(FixUp, StringKeysWithoutAnEntryBecomeEmptyText) {
  EXPECT_EQ(build("T_System", {{"Number", TCIMValue(3u)}}), VRX_OK);
  ASSERT_EQ(ns->GetInstances().size(), 1u);
  EXPECT_EQ(ns->GetInstances()[0]->GetReference({}).ToString(),
            "T_System.CreationClassName=\"\",Name=\"\",Number=3");
  EXPECT_EQ(log.lines(),
            (Lines{{3, "Fixing up instance ...T_System with propertyCreationClassName"},
                   {3, "Fixing up instance ...T_System with propertyName"}}));
}

TEST_F(FixUp, NullEntriesAndOtherKeyTypesStayUnset) {
  // A null entry keeps the key from being fixed up, so Commit refuses it.
  EXPECT_EQ(build("T_System", {{"Name", TCIMValue()}, {"Number", TCIMValue(3u)}}), VRX_KEY_MISSING);
  log.clear();
  EXPECT_EQ(build("T_System", {{"Name", TCIMValue("n")}, {"CreationClassName", TCIMValue("c")}}),
            VRX_KEY_MISSING);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(build("T_SystemSetting", {{"SettingID", TCIMValue("x")}, {"Weight", TCIMValue()}}),
            VRX_OK);
  EXPECT_TRUE(ns->GetInstances()[0]->GetProperty("Weight", {})->GetValue({}).IsNull());
  EXPECT_EQ(build("T_UserSetting", {{"SettingID", TCIMValue("y")}, {"Nope", TCIMValue("z")}}),
            VRX_NO_SUCH_PROPERTY);
  EXPECT_EQ(ns->GetInstances().size(), 1u);
}

TEST_F(FixUp, ACollectorWithoutAClassFailsWithSeven) {
  GetInfo collector(nullptr);
  EXPECT_EQ(build("T_System", {}), VRX_KEY_MISSING);
  try {
    collector.buildCIMInstance({});
    FAIL() << "no exception";
  } catch (const TVRXException& e) {
    EXPECT_EQ(e.GetStatusCode(), 7u);
  }
  EXPECT_THROW(collector.getCIMClass(), TVRXException);
}

}  // namespace
}  // namespace installedapps_col
