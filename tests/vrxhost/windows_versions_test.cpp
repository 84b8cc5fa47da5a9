// Volumes of five Windows versions, built as their hives hold them, inventory as those systems
// report themselves: the version, product and edition, the zone and the offsets of dates, the
// clock at shutdown and the boot configuration.
#include <nlohmann/json.hpp>

#include "tests/vrxhost/vrxhost_fixture.h"
#include "tests/winapi/reg_text_values.h"
#include "tests/winapi/test_hive.h"
#include "tests/winapi/test_sam.h"
#include "winapi/support/little_endian.h"

namespace {

const std::string kSoftware = "HKEY_LOCAL_MACHINE\\SOFTWARE";
const std::string kCurrentVersion = kSoftware + "\\Microsoft\\Windows NT\\CurrentVersion";
const std::string kSystem = "HKEY_LOCAL_MACHINE\\SYSTEM";
const std::string kControl = kSystem + "\\ControlSet001\\Control";
const std::string kBcd = "HKEY_LOCAL_MACHINE\\BCD00000000";
const std::string kBootManager = "{9dea862c-5cdd-4e70-acc1-f32b344d4795}";
const std::string kInstalled = "{3b4e5d4a-1111-11e0-9a6c-806e6f6e6963}";

std::string words(std::initializer_list<unsigned> values) {
  std::string bytes(2 * values.size(), '\0');
  for (std::size_t at = 0; at < bytes.size(); at += 2)
    winapi::putLittleEndian(bytes, at, values.begin()[at / 2], 2);
  return bytes;
}

std::string fileTimeBytes(const std::string& utc) {
  std::uint64_t fileTime = winapi::fileTimeOf(utc);
  std::string bytes(8, '\0');
  winapi::putLittleEndian(bytes, 0, fileTime, 8);
  return bytes;
}

struct Zone {
  std::int32_t bias, daylightBias;
  std::string standardName, daylightName, keyName;
  std::string standardStart = std::string(16, '\0'), daylightStart = std::string(16, '\0');
};

// US Eastern, Tokyo and Central Europe as Windows 10 (names in tzres.dll) or XP (names as text)
// keep them.
Zone eastern(bool references) {
  return {300,
          -60,
          references ? "@tzres.dll,-112" : "Eastern Standard Time",
          references ? "@tzres.dll,-111" : "Eastern Daylight Time",
          references ? "Eastern Standard Time" : "",
          words({0, 11, 0, 1, 2, 0, 0, 0}),
          words({0, 3, 0, 2, 2, 0, 0, 0})};
}
const Zone kTokyo{-540, 0, "@tzres.dll,-632", "@tzres.dll,-631", "Tokyo Standard Time"};

std::string zoneKeys(const Zone& zone) {
  std::string values = dwordValue("Bias", static_cast<std::uint32_t>(zone.bias)) +
                       dwordValue("DaylightBias", static_cast<std::uint32_t>(zone.daylightBias)) +
                       stringValue("StandardName", zone.standardName) +
                       stringValue("DaylightName", zone.daylightName) +
                       hexValue("StandardStart", zone.standardStart) +
                       hexValue("DaylightStart", zone.daylightStart);
  if (!zone.keyName.empty()) values += stringValue("TimeZoneKeyName", zone.keyName);
  return regKey(kControl + "\\TimeZoneInformation", values);
}

const std::string kZoneNames =
    regKey(
        kCurrentVersion + "\\Time Zones\\Eastern Standard Time",
        stringValue("Std", "Eastern Standard Time") + stringValue("Dlt", "Eastern Daylight Time")) +
    regKey(kCurrentVersion + "\\Time Zones\\Tokyo Standard Time",
           stringValue("Std", "Tokyo Standard Time") + stringValue("Dlt", "Tokyo Daylight Time"));

struct Windows {
  std::string name;
  std::string currentVersion;  // values of the CurrentVersion key
  std::string productType;
  std::vector<std::string> productSuite;
  std::string architecture;
  Zone zone;
  std::string shutdown;  // UTC
  std::string extraSoftware = "";
};

class WindowsVolume : public Vrxhost {
 protected:
  fs::path make(const Windows& windows) {
    const fs::path volume = dir / windows.name;
    const fs::path config = volume / "Windows/System32/config";
    fs::create_directories(config);
    winapi::writeHive((config / "SOFTWARE").string(), kSoftware,
                      regKey(kCurrentVersion,
                             windows.currentVersion + stringValue("SystemRoot", "C:\\\\Windows")) +
                          kZoneNames + windows.extraSoftware);
    winapi::writeHive((config / "SYSTEM").string(), kSystem,
                      regKey(kSystem + "\\Select", dwordValue("Current", 1)) +
                          regKey(kControl + "\\ComputerName\\ComputerName",
                                 stringValue("ComputerName", "PC-" + windows.name)) +
                          regKey(kControl + "\\ProductOptions",
                                 stringValue("ProductType", windows.productType) +
                                     multiStringValue("ProductSuite", windows.productSuite)) +
                          regKey(kControl + "\\Session Manager\\Environment",
                                 stringValue("PROCESSOR_ARCHITECTURE", windows.architecture)) +
                          regKey(kControl + "\\Windows",
                                 hexValue("ShutdownTime", fileTimeBytes(windows.shutdown))) +
                          zoneKeys(windows.zone));
    return volume;
  }

  // The properties of the one instance of `cimClass` in the inventory of `volume`.
  nlohmann::json inventory(const fs::path& volume, const std::string& cimClass) {
    const Result result = run(cimClass + " --machine " + volume.string());
    EXPECT_EQ(result.status, 0) << result.err;
    const nlohmann::json output = nlohmann::json::parse(result.out);
    for (const nlohmann::json& instance : output["instances"])
      if (instance["class"] == cimClass) return instance["properties"];
    ADD_FAILURE() << "no " << cimClass << " in " << result.out;
    return {};
  }
};

std::string offsetOf(const nlohmann::json& dateTime) {
  return dateTime.get<std::string>().substr(21);
}

TEST_F(WindowsVolume, EachVersionIsTheSystemItsHivesDescribe) {
  struct Case {
    Windows windows;
    int osType, osSubType;
    std::string version, fixLevel;
  };
  const Case cases[] = {
      {{"win10",
        stringValue("CurrentVersion", "6.3") + dwordValue("CurrentMajorVersionNumber", 10) +
            dwordValue("CurrentMinorVersionNumber", 0) +
            stringValue("CurrentBuildNumber", "16299") + stringValue("EditionID", "Professional") +
            stringValue("ProductName", "Windows 10 Pro"),
        "WinNT",
        {},
        "AMD64",
        eastern(true),
        "2026-07-04T16:00:00Z"},
       85,
       4,
       "6.3",
       "No service packs installed"},
      {{"server2019",
        stringValue("CurrentVersion", "6.3") + dwordValue("CurrentMajorVersionNumber", 10) +
            stringValue("CurrentBuildNumber", "17763") +
            stringValue("EditionID", "ServerStandard") +
            stringValue("ProductName", "Windows Server 2019 Standard"),
        "ServerNT",
        {"Terminal Server"},
        "AMD64",
        eastern(true),
        "2026-07-04T16:00:00Z"},
       86,
       8,
       "6.3",
       "No service packs installed"},
      {{"win7",
        stringValue("CurrentVersion", "6.1") + stringValue("CurrentBuildNumber", "7601") +
            stringValue("CSDVersion", "Service Pack 1") + stringValue("EditionID", "Ultimate") +
            stringValue("ProductName", "Windows 7 Ultimate"),
        "WinNT",
        {},
        "AMD64",
        kTokyo,
        "2026-01-10T03:00:00Z"},
       83,
       16,
       "6.1",
       "Service Pack 1"},
      {{"xp",
        stringValue("CurrentVersion", "5.1") + stringValue("CurrentBuildNumber", "2600") +
            stringValue("CSDVersion", "Service Pack 3") +
            stringValue("ProductName", "Microsoft Windows XP"),
        "WinNT",
        {},
        "x86",
        eastern(false),
        "2026-01-10T03:00:00Z"},
       67,
       4,
       "5.1",
       "Service Pack 3"},
      {{"server2003r2",
        stringValue("CurrentVersion", "5.2") + stringValue("CurrentBuildNumber", "3790") +
            stringValue("CSDVersion", "Service Pack 2") +
            stringValue("ProductName", "Microsoft Windows Server 2003 R2"),
        "ServerNT",
        {"Enterprise", "Terminal Server"},
        "x86",
        eastern(false),
        "2026-01-10T03:00:00Z",
        regKey(kSoftware + "\\Microsoft\\Windows\\CurrentVersion\\R2Setup",
               stringValue("R2BuildNumber", "2075"))},
       72,
       6,
       "5.2",
       "Service Pack 2"},
  };
  for (const Case& c : cases) {
    const nlohmann::json os = inventory(make(c.windows), "QELTO_OperatingSystem");
    EXPECT_EQ(os["OSType"], c.osType) << c.windows.name;
    EXPECT_EQ(os["OSSubType"], c.osSubType) << c.windows.name;
    EXPECT_EQ(os["Version"], c.version) << c.windows.name;
    EXPECT_EQ(os["FixLevel"], c.fixLevel) << c.windows.name;
  }
}

TEST_F(WindowsVolume, TheZoneAndTheClockAreTheMachinesAtShutdown) {
  struct Case {
    Windows windows;
    std::string zoneName, offset, gmt;
    int daylightSaving;
    std::string bootOffset;
  };
  const std::string kWin10 = stringValue("CurrentVersion", "6.3") +
                             dwordValue("CurrentMajorVersionNumber", 10) +
                             stringValue("CurrentBuildNumber", "19045");
  const Case cases[] = {
      // Eastern in July: daylight time, four hours west.
      {{"summer", kWin10, "WinNT", {}, "AMD64", eastern(true), "2026-07-04T16:00:00Z"},
       "Eastern Daylight Time",
       "-240",
       "20260704160000.000000+000",
       2,
       "-240"},
      {{"winter", kWin10, "WinNT", {}, "AMD64", eastern(false), "2026-01-10T03:00:00Z"},
       "Eastern Daylight Time",
       "-300",
       "20260110030000.000000+000",
       2,
       "-300"},
      // A zone without daylight time is in neither state, and the boot time's offset is then 0.
      {{"tokyo", kWin10, "WinNT", {}, "AMD64", kTokyo, "2026-01-10T03:00:00Z"},
       "Tokyo Standard Time",
       "+540",
       "20260110030000.000000+000",
       1,
       "+000"},
  };
  for (const Case& c : cases) {
    const fs::path volume = make(c.windows);
    const nlohmann::json zone = inventory(volume, "QELTO_TimeZone");
    EXPECT_EQ(zone["TheTimeZone"], c.zoneName) << c.windows.name;
    EXPECT_EQ(zone["DaylightSaving"], c.daylightSaving) << c.windows.name;
    EXPECT_EQ(zone["GMTDateTime"], c.gmt) << c.windows.name;
    EXPECT_EQ(offsetOf(zone["LocalDateTime"]), c.offset) << c.windows.name;
    // A machine at rest has no uptime counter: the boot time is the collectors' fallback, one
    // second past the machine's own clock, in its zone.
    const nlohmann::json os = inventory(volume, "QELTO_OperatingSystem");
    EXPECT_EQ(offsetOf(os["LastBootUpTime"]), c.bootOffset) << c.windows.name;
    EXPECT_EQ(os["LastBootUpTime"].get<std::string>().substr(8, 6),
              zone["LocalDateTime"].get<std::string>().substr(8, 4) + "01")
        << c.windows.name;
  }
  // --now moves the clock of the same volume, and with it the zone's state.
  const fs::path summer = dir / "summer";
  const Result moved =
      run("QELTO_TimeZone --now 2026-12-01T12:00:00+01:00 --machine " + summer.string());
  ASSERT_EQ(moved.status, 0) << moved.err;
  EXPECT_NE(moved.out.find("\"GMTDateTime\": \"20261201110000.000000+000\""), std::string::npos)
      << moved.out;
  EXPECT_NE(moved.out.find("\"LocalDateTime\": \"20261201060000.000000-300\""), std::string::npos);
  const Result bad = run("QELTO_TimeZone --now 2026-12-01T12:00:00 --machine " + summer.string());
  EXPECT_EQ(bad.status, 2);
  EXPECT_EQ(bad.err.rfind("vrxhost: --now 2026-12-01T12:00:00: expected", 0), 0u) << bad.err;
}

TEST_F(WindowsVolume, BootConfigurationComesFromBootBcdOrBootIni) {
  const Windows win10{"bcd",
                      stringValue("CurrentVersion", "6.3"),
                      "WinNT",
                      {},
                      "AMD64",
                      eastern(true),
                      "2026-07-04T16:00:00Z"};
  const fs::path volume = make(win10);
  fs::create_directories(volume / "Boot");
  auto element = [](const std::string& object, const std::string& id, const std::string& value) {
    return regKey(kBcd + "\\Objects\\" + object + "\\Elements\\" + id, value);
  };
  winapi::writeHive(
      (volume / "Boot/BCD").string(), kBcd,
      element(kBootManager, "24000001", multiStringValue("Element", {kInstalled})) +
          element(kBootManager, "12000004", stringValue("Element", "Windows Boot Manager")) +
          element(kInstalled, "12000004", stringValue("Element", "Windows 10")));
  nlohmann::json os = inventory(volume, "QELTO_OperatingSystem");
  EXPECT_EQ(os["BootConfigurationFileName"], "Windows Boot Manager");
  ASSERT_TRUE(os["BootConfigurationFileContents"].is_array());
  EXPECT_EQ(os["BootConfigurationFileContents"][0], "Installed OS :Windows 10\n\n");

  // A damaged store leaves the rest of the inventory as it was.
  fs::resize_file(volume / "Boot/BCD", 0x1100);
  os = inventory(volume, "QELTO_OperatingSystem");
  EXPECT_FALSE(os.contains("BootConfigurationFileName"));
  EXPECT_EQ(os["Version"], "6.3");

  // 5.x systems boot from boot.ini at the volume's root.
  writeFile(volume / "BOOT.INI",
            "[boot loader]\r\ntimeout=30\r\n[operating systems]\r\n"
            "multi(0)disk(0)rdisk(0)partition(1)\\WINDOWS=\"Windows XP\" /fastdetect\r\n");
  os = inventory(volume, "QELTO_OperatingSystem");
  EXPECT_EQ(os["BootConfigurationFileName"], "C:\\boot.ini");
  EXPECT_EQ(os["BootConfigurationFileContents"].size(), 4u);
}

}  // namespace
