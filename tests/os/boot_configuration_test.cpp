#include <gtest/gtest.h>

#include "os/os_configuration.h"
#include "tests/os/os_test_machine.h"

namespace installedapps_col {
namespace {

using namespace NZARVEK20;
using Texts = std::vector<std::string>;
using Lines = std::vector<std::pair<int, std::string>>;

const std::string kBootManager = "{9dea862c-5cdd-4e70-acc1-f32b344d4795}";
const std::string kMemoryTest = "{b2721d73-1db4-4c62-bf78-c548a880142d}";
const std::string kSeven = "{3b4e5d4a-1111-11e0-9a6c-806e6f6e6963}";
const std::string kServer = "{3b4e5d4b-2222-11e0-9a6c-806e6f6e6963}";
const std::string kBroken = "{3b4e5d4c-3333-11e0-9a6c-806e6f6e6963}";
const std::string kResume = "{3b4e5d4d-4444-11e0-9a6c-806e6f6e6963}";

std::string element(const std::string& object, const std::string& id, const std::string& value) {
  return machineKey("BCD00000000\\Objects\\" + object + "\\Elements\\" + id, value);
}

std::string text(const std::string& object, const std::string& id, const std::string& value) {
  return element(object, id, stringValue("Element", value));
}

// A store with three installed systems, the third described in binary.
std::string bootStore(bool withMemoryTest) {
  std::string reg =
      element(kBootManager, "24000001", multiStringValue("Element", {kSeven, kServer, kBroken})) +
      text(kBootManager, "12000004", "Windows Boot Manager") +
      text(kBootManager, "23000006", kResume) + text(kSeven, "12000004", "Windows 7") +
      text(kServer, "12000004", "Windows Server 2008 R2") +
      element(kBroken, "12000004", "\"Element\"=hex:57,00,69,00\r\n") +
      text(kResume, "12000004", "Resume from Hibernate") +
      text(kResume, "12000002", "\\\\Windows\\\\system32\\\\winresume.exe");
  if (withMemoryTest)
    reg += text(kMemoryTest, "12000004", "Windows Memory Diagnostic") +
           text(kMemoryTest, "12000002", "\\\\boot\\\\memtest.exe");
  return reg;
}

Texts elements(const TCIMValue& value) {
  Texts texts;
  for (const TCIMValue& element : value.GetElements()) texts.push_back(element.GetString());
  return texts;
}

std::string numberedLines(int count) {
  std::string file;
  for (int i = 1; i <= count; ++i) file += "line " + std::to_string(i) + "\r\n";
  return file;
}

class BootConfiguration : public ::testing::Test {
 protected:
  void SetUp() override { registeredPlugin(); }
  size_t passes() const { return linesWith(log, "routine....2").size(); }
  LogCapture log;
};

TEST_F(BootConfiguration, Boot1IniOnTheSystemDriveWinsOverEveryBootIni) {
  nlohmann::json machine = windows7();
  machine["environment"]["SystemDrive"] = "D:";
  OsMachine current(machine, bootStore(true),
                    {{"drive_c/boot.ini", "[boot loader]\r\n"},
                     {"drive_d/BOOT1.INI", "[boot loader]\r\ntimeout=30\r\n"}});
  const PropertyMap values = OSConfiguration().getBootProperties();
  EXPECT_EQ(values.at("BootConfigurationFileName").GetString(), "D:\\boot1.ini");
  EXPECT_EQ(elements(values.at("BootConfigurationFileContents")),
            (Texts{"[boot loader]", "timeout=30"}));
  EXPECT_EQ(log.lines(), (Lines{{3, "Collecting Boot Configuration File Properties..."},
                                {3, "Collecting Boot Configuration File Properties..."},
                                {3, "Exiting boot.ini info collection routine....2"},
                                {3, "Exiting boot.ini info collection routine....2"},
                                {3, "Exiting boot.ini info collection routine....2"},
                                {3, "Exiting boot.ini info collection routine...."}}));
}

TEST_F(BootConfiguration, WithoutBoot1IniTheLowestDriveFromCOnWins) {
  OsMachine current(windows7(), "",
                    {{"drive_a/boot.ini", "a\r\n"},
                     {"drive_f/boot.ini", "f\r\n"},
                     {"drive_e/boot.ini", "e\r\n"},
                     {"drive_c/boot1.ini/keep", "a folder, not a file"}});
  const PropertyMap values = OSConfiguration().getBootProperties();
  EXPECT_EQ(values.at("BootConfigurationFileName").GetString(), "E:\\boot.ini");
  EXPECT_EQ(elements(values.at("BootConfigurationFileContents")), (Texts{"e"}));
}

TEST_F(BootConfiguration, BlankLinesUseAReadAndAddNothing) {
  OsMachine current(windows7(), "",
                    {{"drive_c/boot.ini", "[boot loader]\r\n\r\n\r\nlast\rline\nno end"}});
  EXPECT_EQ(elements(OSConfiguration().getBootConfigurationValue(OSConfiguration::kBootContents)),
            (Texts{"[boot loader]", "last\rline", "no end"}));
  EXPECT_EQ(passes(), 5u);
}

TEST_F(BootConfiguration, AtMost150ReadsAreMade) {
  OsMachine current(windows7(), "", {{"drive_c/boot.ini", numberedLines(200)}});
  const Texts lines =
      elements(OSConfiguration().getBootConfigurationValue(OSConfiguration::kBootContents));
  ASSERT_EQ(lines.size(), 150u);
  EXPECT_EQ(lines.back(), "line 150");
  EXPECT_EQ(passes(), 150u);
}

TEST_F(BootConfiguration, AFileOfBlankLinesGivesAnEmptyListThatIsThere) {
  OsMachine current(windows7(), "", {{"drive_c/boot.ini", std::string(150, '\n')}});
  const PropertyMap values = OSConfiguration().getBootProperties();
  ASSERT_EQ(values.count("BootConfigurationFileContents"), 1u);
  EXPECT_TRUE(values.at("BootConfigurationFileContents").IsArray());
  EXPECT_TRUE(elements(values.at("BootConfigurationFileContents")).empty());
}

TEST_F(BootConfiguration, ALineThatDoesNotFitEndsTheReading) {
  const std::string fits(1023, 'x');
  const std::string tooLong = std::string(1023, 'y') + "z";
  OsMachine current(windows7(), "",
                    {{"drive_c/boot.ini", fits + "\r\n" + tooLong + "\r\nafter\r\n"}});
  const Texts lines =
      elements(OSConfiguration().getBootConfigurationValue(OSConfiguration::kBootContents));
  EXPECT_EQ(lines, (Texts{fits, std::string(1023, 'y')}));
  EXPECT_EQ(passes(), 150u);
}

TEST_F(BootConfiguration, TheStoreGivesOneBlockPerSystemAndThreeMore) {
  OsMachine current(windows7(), bootStore(true));
  const PropertyMap values = OSConfiguration().getBootProperties();
  EXPECT_EQ(values.at("BootConfigurationFileName").GetString(), "Windows Boot Manager");
  EXPECT_EQ(elements(values.at("BootConfigurationFileContents")),
            (Texts{"Installed OS :Windows 7\n\n", "Installed OS :Windows Server 2008 R2\n\n",
                   "Installed OS :\n\n", "Windows Boot Manager: Windows Boot Manager\n\n",
                   "Memory Test: Windows Memory Diagnostic\nLocation: \\boot\\memtest.exe\n\n",
                   "Windows Resume: Resume from Hibernate\nLocation: "
                   "\\Windows\\system32\\winresume.exe\n\n"}));
  EXPECT_EQ(passes(), 0u);
}

TEST_F(BootConfiguration, MissingStoreObjectsKeepTheirLabels) {
  OsMachine current(windows7(), bootStore(false));
  EXPECT_EQ(OSConfiguration().getBcdDescriptions()[4], "Memory Test: \nLocation: \n\n");
  EXPECT_EQ(
      OSConfiguration().readBcdElement("BCD00000000\\Objects\\" + kBroken + "\\Elements\\12000004"),
      "");
  EXPECT_EQ(OSConfiguration().readBcdElement("BCD00000000\\Objects\\" + kBootManager +
                                             "\\Elements\\24000001"),
            kSeven + kServer + kBroken);
}

// An element is read into 8192 bytes: 8191 characters and their end mark fit, one more character
// makes the read fail and the element's text empty, with nothing written past the end.
TEST_F(BootConfiguration, ElementsBeyondTheirBufferGiveEmptyText) {
  const std::string fits(8191, 'f'), tooLong(8192, 't');
  OsMachine current(windows7(),
                    text(kSeven, "12000004", fits) + text(kServer, "12000004", tooLong));
  const std::string objects = "BCD00000000\\Objects\\";
  EXPECT_EQ(OSConfiguration().readBcdElement(objects + kSeven + "\\Elements\\12000004"), fits);
  EXPECT_EQ(OSConfiguration().readBcdElement(objects + kServer + "\\Elements\\12000004"), "");
}

TEST_F(BootConfiguration, NeitherFileNorStoreLeavesBothPropertiesOut) {
  OsMachine current(windows7(), text(kBootManager, "12000004", "Windows Boot Manager"));
  EXPECT_TRUE(OSConfiguration().getBootProperties().empty());
  EXPECT_EQ(linesWith(log, "Boot.ini"), (Lines(2, {0, "Could not open Boot.ini file."})));
}

TEST_F(BootConfiguration, AnUnexpandableSystemDriveLeavesBothPropertiesOut) {
  nlohmann::json machine = windows7();
  machine["fail"] = {{"ExpandEnvironmentStringsA", 0}};
  OsMachine current(machine, bootStore(true), {{"drive_c/boot.ini", "x\r\n"}});
  EXPECT_TRUE(OSConfiguration().getBootProperties().empty());
  EXPECT_EQ(linesWith(log, "environmental"),
            (Lines(2, {0, "Could not find environmental variable systemroot."})));
}

}  // namespace
}  // namespace installedapps_col
