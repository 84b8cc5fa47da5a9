#include <gtest/gtest.h>

#include "os/page_file_info.h"
#include "plugin/system_information.h"
#include "tests/os/os_test_machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Names = std::vector<std::string>;
using Lines = std::vector<std::pair<int, std::string>>;

const char* const kNoEnumPageFiles =
    "PageFileInfo::getPagefileInfo cannot retrieve EnumPageFilesA Function from psapi.dll.";

// Three page files, listed out of order; the figures page size (4096)
// differs from the system's (8192) so that each route shows in FileSize.
nlohmann::json pagedMachine() {
  return {{"system", {{"pageSize", 8192}}},
          {"performance", {{"pageSize", 4096}}},
          {"pageFiles",
           {{{"name", "\\??\\D:\\pagefile.sys"}, {"totalSize", 262144}},
            {{"name", "\\??\\C:\\pagefile.sys"}, {"totalSize", 655360}},
            {{"name", "\\??\\C:\\hiberfil\\pagefile.sys"}, {"totalSize", 1}}}}};
}

class PageFiles : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  int collect() { return SystemInformation(ns).collectClass(ns->GetClass("QELTO_PageFile", {})); }
  nlohmann::json with(const char* member, const nlohmann::json& value) {
    nlohmann::json description = pagedMachine();
    description[member] = value;
    return description;
  }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  LogCapture log;
};

TEST_F(PageFiles, EnumeratedPageFilesComeInPathOrderWithTheirSizeInBytes) {
  OsMachine machine(pagedMachine());
  EXPECT_EQ(collect(), 0);
  EXPECT_EQ(propertyValues(*ns, "Name"),
            (Names{"C:\\hiberfil\\pagefile.sys", "C:\\pagefile.sys", "D:\\pagefile.sys"}));
  EXPECT_EQ(propertyValues(*ns, "FileSize"), (Names{"4096", "2684354560", "1073741824"}));
  EXPECT_EQ(propertyValues(*ns, "CreationClassName"),
            (Names{"QELTO_PageFile", "QELTO_PageFile", "QELTO_PageFile"}));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(PageFiles, WithoutEnumPageFilesTheNativeListIsReadAndItsPrefixCut) {
  OsMachine machine(with("missing", {"psapi.dll!EnumPageFilesA", "psapi.dll!GetPerformanceInfo"}));
  EXPECT_EQ(collect(), 0);
  EXPECT_EQ(propertyValues(*ns, "Name"),
            (Names{"C:\\hiberfil\\pagefile.sys", "C:\\pagefile.sys", "D:\\pagefile.sys"}));
  // The page size comes from the system information now.
  EXPECT_EQ(propertyValues(*ns, "FileSize"), (Names{"8192", "5368709120", "2147483648"}));
  EXPECT_EQ(log.lines(), (Lines{{3, kNoEnumPageFiles}}));
}

TEST_F(PageFiles, SourcesThatFailGiveFewerFacts) {
  {
    OsMachine machine(with("fail", {{"GetPerformanceInfo", 0}}));
    collect();
    EXPECT_EQ(propertyValues(*ns, "Name").size(), 3u);
    EXPECT_EQ(propertyValues(*ns, "FileSize"), (Names{"", "", ""}));
  }
  {
    OsMachine machine(with("missing", {"psapi.dll"}));
    auto count = ns->GetInstances().size();
    collect();
    EXPECT_EQ(ns->GetInstances().size(), count);
  }
  {
    OsMachine machine(
        with("missing", {"psapi.dll!EnumPageFilesA", "ntdll.dll!ZwQuerySystemInformation"}));
    auto count = ns->GetInstances().size();
    collect();
    EXPECT_EQ(ns->GetInstances().size(), count);
    EXPECT_EQ(log.lines(), (Lines{{3, kNoEnumPageFiles}}));
  }
  {
    OsMachine machine(nlohmann::json::object());
    auto count = ns->GetInstances().size();
    collect();
    EXPECT_EQ(ns->GetInstances().size(), count);
  }
  EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(PageFiles, AFailedInstanceEndsTheListAndKeepsWhatWasCommitted) {
  auto taken = ns->GetClass("QELTO_PageFile", {})->AllocateInstance({});
  taken->SetPropertyValue("CreationClassName", TCIMValue("QELTO_PageFile"), {});
  taken->SetPropertyValue("Name", TCIMValue("C:\\pagefile.sys"), {});
  taken->Commit({});
  OsMachine machine(pagedMachine());
  EXPECT_EQ(collect(), 0);
  EXPECT_EQ(propertyValues(*ns, "Name"), (Names{"C:\\pagefile.sys", "C:\\hiberfil\\pagefile.sys"}));
  EXPECT_EQ(log.lines(), (Lines{{3,
                                 "PageFileInfo::buildCIMInstances Encountered an error "
                                 "Encountered an error generating CIM instances. Error Code: "
                                 "11"}}));
}

}  // namespace
}  // namespace installedapps_col
