// A volume's or Wine prefix's description as its registry tells it: the version a program
// without a compatibility manifest is told, product type, suite and edition, the zone from
// TimeZoneInformation with its names and yearly rules, and the moment the machine shut down.
#include "winapi/machine/registry_machine_facts.h"

#include <gtest/gtest.h>

#include "tests/winapi/reg_text_values.h"
#include "winapi/formats/reg_file.h"
#include "winapi/support/calendar.h"
#include "winapi/support/little_endian.h"

namespace winapi {
namespace {

const std::string kCurrentVersion =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
const std::string kControl = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control";
const std::string kZoneKey = kControl + "\\TimeZoneInformation";
const std::string kEastern = kCurrentVersion + "\\Time Zones\\Eastern Standard Time";

nlohmann::json factsOf(const std::string& reg, std::optional<std::int64_t> now = std::nullopt) {
  Registry registry;
  mergeRegFile(registry, "Windows Registry Editor Version 5.00\r\n\r\n" + reg, "test.reg", 1252);
  return registryMachineFacts(registry, now);
}

std::string littleEndian16(std::initializer_list<unsigned> words) {
  std::string bytes(2 * words.size(), '\0');
  for (std::size_t at = 0; at < bytes.size(); at += 2)
    putLittleEndian(bytes, at, words.begin()[at / 2], 2);
  return bytes;
}

std::string littleEndian32(std::int32_t number) {
  auto value = static_cast<std::uint32_t>(number);
  return littleEndian16({value & 0xFFFF, value >> 16});
}

// SYSTEMTIME of a yearly rule: the week-th dayOfWeek of month at hour.
std::string rule(unsigned month, unsigned week, unsigned hour) {
  return littleEndian16({0, month, 0, week, hour, 0, 0, 0});
}

std::string tzi(std::int32_t bias, const std::string& standard, const std::string& daylight) {
  return littleEndian32(bias) + littleEndian32(0) + littleEndian32(-60) + standard + daylight;
}

std::int64_t at(const char* utc) { return *parseUtcTime(utc); }

TEST(RegistryMachineFacts, VersionIsWhatAProgramWithoutManifestIsTold) {
  struct Case {
    std::string values;
    unsigned major, minor;
  };
  const Case cases[] = {
      {stringValue("CurrentVersion", "6.3") + dwordValue("CurrentMajorVersionNumber", 10), 6, 2},
      {stringValue("CurrentVersion", "6.3"), 6, 2},
      {dwordValue("CurrentMajorVersionNumber", 10), 6, 2},
      {stringValue("CurrentVersion", "6.1"), 6, 1},
      {stringValue("CurrentVersion", "5.2"), 5, 2},
      // Wine keeps the numbers for every version it plays.
      {stringValue("CurrentVersion", "5.2") + dwordValue("CurrentMajorVersionNumber", 5) +
           dwordValue("CurrentMinorVersionNumber", 2),
       5, 2},
  };
  for (const Case& c : cases) {
    nlohmann::json facts =
        factsOf(regKey(kCurrentVersion, c.values + stringValue("CurrentBuildNumber", "17763")));
    EXPECT_EQ(facts["version"]["major"], c.major) << c.values;
    EXPECT_EQ(facts["version"]["minor"], c.minor) << c.values;
    EXPECT_EQ(facts["version"]["build"], 17763);
    EXPECT_EQ(facts["version"]["csdVersion"], "");
  }
  nlohmann::json xp =
      factsOf(regKey(kCurrentVersion, stringValue("CurrentVersion", "5.1") +
                                          stringValue("CSDVersion", "Service Pack 3")) +
              regKey(kControl + "\\Windows", dwordValue("CSDVersion", 0x300)));
  EXPECT_EQ(xp["version"]["csdVersion"], "Service Pack 3");
  EXPECT_EQ(xp["version"]["servicePackMajor"], 3);
  EXPECT_EQ(xp["version"]["servicePackMinor"], 0);
  EXPECT_FALSE(
      factsOf(regKey(kCurrentVersion, stringValue("CurrentVersion", "six"))).contains("version"));
}

TEST(RegistryMachineFacts, ProductTypeSuiteAndEditionComeFromProductOptionsAndEditionId) {
  struct Case {
    std::string version, productType;
    std::vector<std::string> suite;
    std::string edition;
    unsigned type, suiteMask;
    std::optional<unsigned> product;
  };
  const Case cases[] = {
      // Windows adds single-user Terminal Services to every workstation from 5.1 on.
      {"5.1", "WinNT", {}, "", 1, 0x100, std::nullopt},
      {"5.1", "WinNT", {"Personal"}, "", 1, 0x300, std::nullopt},
      {"5.0", "WinNT", {}, "", 1, 0, std::nullopt},
      {"5.2", "ServerNT", {"Enterprise", "Terminal Server"}, "", 3, 0x12, std::nullopt},
      {"5.2", "LanmanNT", {"Blade", "DataCenter"}, "", 2, 0x480, std::nullopt},
      {"6.1", "WinNT", {}, "Ultimate", 1, 0x100, 1},
      {"6.3", "ServerNT", {"Terminal Server"}, "ServerStandard", 3, 0x10, 7},
      {"6.3", "ServerNT", {}, "ServerDatacenterEval", 3, 0, 0x50},
      {"6.3", "WinNT", {"Small Business(Restricted)"}, "professionaln", 1, 0x120, 0x31},
      {"6.3", "WinNT", {}, "Core", 1, 0x100, 0x65},
      {"6.3", "WinNT", {}, "NoSuchEdition", 1, 0x100, 0},
  };
  for (const Case& c : cases) {
    std::string reg =
        regKey(kCurrentVersion,
               stringValue("CurrentVersion", c.version) +
                   (c.edition.empty() ? "" : stringValue("EditionID", c.edition))) +
        regKey(kControl + "\\ProductOptions", stringValue("ProductType", c.productType) +
                                                  multiStringValue("ProductSuite", c.suite));
    nlohmann::json version = factsOf(reg)["version"];
    EXPECT_EQ(version["productType"], c.type) << c.productType;
    EXPECT_EQ(version["suiteMask"], c.suiteMask) << c.version << " " << c.productType;
    if (c.product)
      EXPECT_EQ(version["productInfo"], *c.product) << c.edition;
    else
      EXPECT_FALSE(version.contains("productInfo")) << c.version;
  }
}

// Eastern time as a Windows 10 hive holds it: names that refer into tzres.dll, a key name with
// bytes after its terminator, and the 2007 change of the US rules in Dynamic DST.
std::string easternZone(const std::string& extra = "") {
  return regKey(kZoneKey, dwordValue("Bias", 300) + dwordValue("StandardBias", 0) +
                              dwordValue("DaylightBias", 0xFFFFFFC4) +
                              hexValue("StandardStart", rule(11, 1, 2)) +
                              hexValue("DaylightStart", rule(3, 2, 2)) +
                              stringValue("StandardName", "@tzres.dll,-112") +
                              stringValue("DaylightName", "@tzres.dll,-111") +
                              hexValue("TimeZoneKeyName",
                                       ::utf16Bytes("Eastern Standard Time") +
                                           std::string(2, '\0') + ::utf16Bytes("junk"),
                                       "1") +
                              extra) +
         regKey(kEastern, stringValue("Std", "Eastern Standard Time") +
                              stringValue("Dlt", "Eastern Daylight Time")) +
         regKey(kEastern + "\\Dynamic DST",
                dwordValue("FirstEntry", 2006) + dwordValue("LastEntry", 2007) +
                    hexValue("2006", tzi(300, rule(10, 5, 2), rule(4, 1, 2))) +
                    hexValue("2007", tzi(300, rule(11, 1, 2), rule(3, 2, 2))));
}

TEST(RegistryMachineFacts, ZoneComesFromTimeZoneInformationWithTheRulesOfTheYear) {
  nlohmann::json zone = factsOf(easternZone(), at("2026-07-01T12:00:00Z"))["timeZone"];
  EXPECT_EQ(zone["bias"], 300);
  EXPECT_EQ(zone["daylightBias"], -60);
  EXPECT_EQ(zone["standardName"], "Eastern Standard Time");
  EXPECT_EQ(zone["daylightName"], "Eastern Daylight Time");
  EXPECT_EQ(zone["daylightDate"]["month"], 3);
  EXPECT_EQ(zone["daylightDate"]["day"], 2);
  // 2006 had its own rules; a year before the first entry takes the first.
  for (const char* when : {"2006-07-01T12:00:00Z", "1999-07-01T12:00:00Z"}) {
    nlohmann::json old = factsOf(easternZone(), at(when))["timeZone"];
    EXPECT_EQ(old["daylightDate"]["month"], 4) << when;
    EXPECT_EQ(old["standardDate"]["month"], 10) << when;
  }
  // With the dynamic rules switched off, the key's own dates hold in every year.
  nlohmann::json fixed = factsOf(easternZone(dwordValue("DynamicDaylightTimeDisabled", 1)),
                                 at("2006-07-01T12:00:00Z"))["timeZone"];
  EXPECT_EQ(fixed["daylightDate"]["month"], 3);
}

TEST(RegistryMachineFacts, ZoneWithoutItsEntryKeepsWhatTheKeyHolds) {
  // XP: no key name, names as text.
  nlohmann::json xp = factsOf(regKey(
      kZoneKey,
      dwordValue("Bias", 0xFFFFFFC4) + stringValue("StandardName", "W. Europe Standard Time") +
          stringValue("DaylightName", "W. Europe Daylight Time") +
          dwordValue("DaylightBias", 0xFFFFFFC4) + hexValue("StandardStart", rule(10, 5, 3)) +
          hexValue("DaylightStart", rule(3, 5, 2))))["timeZone"];
  EXPECT_EQ(xp["bias"], -60);
  EXPECT_EQ(xp["daylightName"], "W. Europe Daylight Time");
  EXPECT_EQ(xp["standardDate"]["day"], 5);
  // A reference nothing resolves stays as it is; a rule Windows could not act on (week 9) leaves
  // the zone without transitions.
  nlohmann::json unresolved = factsOf(
      regKey(kZoneKey, dwordValue("Bias", 0) + stringValue("StandardName", "@tzres.dll,-2") +
                           stringValue("TimeZoneKeyName", "Nowhere Standard Time") +
                           hexValue("StandardStart", rule(10, 9, 3)) +
                           hexValue("DaylightStart", rule(3, 5, 2))))["timeZone"];
  EXPECT_EQ(unresolved["standardName"], "@tzres.dll,-2");
  EXPECT_EQ(unresolved["daylightDate"]["month"], 0);
  EXPECT_EQ(unresolved["standardDate"]["month"], 0);
  EXPECT_FALSE(factsOf(regKey(kZoneKey, stringValue("StandardName", "x"))).contains("timeZone"));
}

TEST(RegistryMachineFacts, TheClockIsTheMomentTheMachineShutDown) {
  Registry registry;
  // 2026-03-01T08:30:00Z as a FILETIME.
  std::uint64_t fileTime = (at("2026-03-01T08:30:00Z") + 11644473600000) * 10000;
  std::string bytes(8, '\0');
  putLittleEndian(bytes, 0, fileTime, 8);
  mergeRegFile(registry,
               "Windows Registry Editor Version 5.00\r\n\r\n" +
                   regKey(kControl + "\\Windows", hexValue("ShutdownTime", bytes)),
               "test.reg", 1252);
  EXPECT_EQ(registryShutdownTime(registry), at("2026-03-01T08:30:00Z"));
  EXPECT_EQ(registryMachineFacts(registry, at("2026-03-01T08:30:00Z"))["now"],
            "2026-03-01T08:30:00.000Z");
  EXPECT_EQ(registryShutdownTime(Registry()), std::nullopt);
}

}  // namespace
}  // namespace winapi
