#include <gtest/gtest.h>

#include "components/os_component_info.h"
#include "tests/components/component_test_files.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Lines = std::vector<std::pair<int, std::string>>;

nlohmann::json withPath(const std::string& path) { return {{"environment", {{"Path", path}}}}; }

class ComponentVersions : public ::testing::Test {
 protected:
  void SetUp() override {
    registeredPlugin();
    if (!haveVersionedFiles()) GTEST_SKIP() << "the mingw-w64 tools made no version resources";
  }
  // The version and description of `path`, starting from a description
  // that the call has to clear.
  std::pair<std::string, std::string> versionOf(const std::string& path) {
    std::string description = "left over";
    const std::string version = collector.getFileVersion(path, description);
    return {version, description};
  }
  std::pair<std::string, std::string> searchPath(const std::string& fileName) {
    std::string description = "left over";
    const std::string version = collector.findDllInSysPath(fileName, description);
    return {version, description};
  }
  std::string notInPath(const std::string& fileName) {
    return "OsComponentInfo::findDllInSysPath " + fileName +
           " cannot be found in the directories of the system PATH variable to obtain the version.";
  }

  boost::shared_ptr<TRepositoryNamespace> ns = makeSchemaNamespace();
  OSComponentInfo collector{ns->GetClass("QELTO_OSComponent", {})};
  LogCapture log;
};

TEST_F(ComponentVersions, TheStringTableOfTheFirstTranslationGivesVersionAndDescription) {
  OsMachine machine(withPath(""), "",
                    {{"drive_c/v/comment.dll", versionedFile("build_comment.dll")},
                     {"drive_c/v/untranslated.dll", versionedFile("no_translation.dll")},
                     {"drive_c/v/blank.dll", versionedFile("leading_blank.dll")},
                     {"drive_c/v/described.dll", versionedFile("description_only.dll")},
                     {"drive_c/v/empty.dll", ""}});
  using Result = std::pair<std::string, std::string>;
  // The build comment behind the number is cut off.
  EXPECT_EQ(versionOf("C:\\v\\comment.dll"), (Result{"5.1.2600.5512", "Optional Component Setup"}));
  // Without a translation table the string table cannot be found at all.
  EXPECT_EQ(versionOf("C:\\v\\untranslated.dll"), (Result{"", ""}));
  // A version that starts with a blank is no version; its description stays.
  EXPECT_EQ(versionOf("C:\\v\\blank.dll"), (Result{"", "Blank First"}));
  EXPECT_EQ(versionOf("C:\\v\\described.dll"), (Result{"", "Described Only"}));
  EXPECT_EQ(versionOf("C:\\v\\empty.dll"), (Result{"", ""}));
  EXPECT_EQ(versionOf("C:\\v\\missing.dll"), (Result{"", ""}));
  EXPECT_EQ(versionOf(""), (Result{"", ""}));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(ComponentVersions, ThePathIsSearchedInOrderUntilAFileGivesAVersion) {
  const std::map<std::string, std::string> files = {
      {"drive_c/first/x.dll", versionedFile("description_only.dll")},
      {"drive_c/second/x.dll", versionedFile("build_comment.dll")},
      {"drive_c/third/x.dll", versionedFile("plain.dll")},
      {"drive_c/third/y.dll", versionedFile("plain.dll")},
      {"drive_c/first/z.dll", versionedFile("plain.dll")},
      {"drive_c/second/w.dll", versionedFile("leading_blank.dll")}};
  using Result = std::pair<std::string, std::string>;
  {
    // An empty piece and a directory with a backslash at its end are tried
    // as they are.
    OsMachine machine(withPath("C:\\first;;C:\\second\\;C:\\third"), "", files);
    EXPECT_EQ(searchPath("x.dll"), (Result{"5.1.2600.5512", "Optional Component Setup"}));
    EXPECT_EQ(searchPath("y.dll"), (Result{"6.0.6001.18000", "Plain Setup"}));
    EXPECT_EQ(searchPath("z.dll"), (Result{"6.0.6001.18000", "Plain Setup"}));
    EXPECT_TRUE(log.lines().empty());
    // The last directory's call decides the description that is left.
    EXPECT_EQ(searchPath("w.dll"), (Result{"", ""}));
    EXPECT_EQ(log.lines(), (Lines{{3, notInPath("w.dll")}}));
  }
  log.clear();
  {
    OsMachine machine(withPath("C:\\third;"), "", files);
    EXPECT_EQ(searchPath("y.dll"), (Result{"6.0.6001.18000", "Plain Setup"}));
    EXPECT_EQ(searchPath("q.dll"), (Result{"", ""}));
  }
  {
    OsMachine machine(withPath(""), "", files);
    EXPECT_EQ(searchPath("y.dll"), (Result{"", ""}));
  }
  {
    OsMachine machine(nlohmann::json::object(), "", files);
    EXPECT_EQ(searchPath("y.dll"), (Result{"", ""}));
  }
  EXPECT_EQ(log.lines(),
            (Lines{{3, notInPath("q.dll")}, {3, notInPath("y.dll")}, {3, notInPath("y.dll")}}));
}

}  // namespace
}  // namespace installedapps_col
