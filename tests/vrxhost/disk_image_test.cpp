// Disk images made at test time from a volume folder, as a normal user (see
// tests/images/make_disk_image.sh): each container inventories as the folder does, the system
// partition gives the boot store, MountedDevices letters the other partitions, and images that
// cannot be read stop the run with one line.
#include <nlohmann/json.hpp>

#include "tests/vrxhost/volume_twin.h"
#include "tests/winapi/reg_text_values.h"

namespace {

const std::string kSoftware = "HKEY_LOCAL_MACHINE\\SOFTWARE";
const std::string kSystem = "HKEY_LOCAL_MACHINE\\SYSTEM";
const std::string kBcd = "HKEY_LOCAL_MACHINE\\BCD00000000";
const std::string kBootManager = "{9dea862c-5cdd-4e70-acc1-f32b344d4795}";
const std::string kInstalled = "{3c4d7ed2-1b9a-11ee-9b1f-000c29a1b2c3}";

// The unique GUID make_disk_image.sh gives GPT partition `number`, as MountedDevices keeps it.
std::string partitionGuidBytes(unsigned char number) {
  return std::string{static_cast<char>(number), 0, 0, 0, 0x52, 0x57, 0x49, 0x4e,
                     static_cast<char>(0x80),   0, 0, 0, 0,    0,    0,    0};
}

class ImageMachine : public Vrxhost {
 protected:
  void SetUp() override {
    Vrxhost::SetUp();
    for (const char* tool :
         {"mkntfs", "sgdisk", "sfdisk", "mkfs.fat", "mcopy", "qemu-img", "ewfacquire"})
      if (std::system(("command -v " + std::string(tool) + " >/dev/null").c_str()) != 0)
        GTEST_SKIP() << "no " << tool;
    if (!fs::exists(VRX_NTFS_FILL)) GTEST_SKIP() << "no ntfs_fill (libntfs-3g)";
  }

  // The twin of registry-fixes with a page file on C: and one on the data partition D:, a user
  // profile, and drive letters for the gpt layout's partitions.
  fs::path makeVolume(const std::string& name, const std::string& computer) {
    const fs::path volume = dir / name;
    const fs::path config = volume / "Windows/System32/config";
    fs::create_directories(config);
    std::string reg = readFile(registryFixesMachine() / "registry/10-updates.reg");
    reg = reg.substr(reg.find('\n') + 1);  // the header line; writeHive writes its own
    winapi::writeHive((config / "SOFTWARE").string(), kSoftware,
                      reg + regKey(kSoftware + "\\Microsoft\\Windows NT\\CurrentVersion",
                                   stringValue("ProductName", "Windows Server 2003 " + computer) +
                                       stringValue("CurrentVersion", "5.2")));
    const std::string mounted =
        hexValue("\\\\DosDevices\\\\C:", "DMIO:ID:" + partitionGuidBytes(2)) +
        hexValue("\\\\DosDevices\\\\D:", "DMIO:ID:" + partitionGuidBytes(3));
    winapi::writeHive(
        (volume / "Windows/System32/config/SYSTEM").string(), kSystem,
        regKey(kSystem + "\\Select", dwordValue("Current", 1)) +
            regKey(kSystem + "\\ControlSet001\\Control\\ComputerName\\ComputerName",
                   stringValue("ComputerName", computer)) +
            regKey(
                kSystem + "\\ControlSet001\\Control\\Session Manager\\Memory Management",
                multiStringValue("PagingFiles", {"C:\\pagefile.sys 0 0", "D:\\pagefile.sys 0 0"})) +
            regKey(kSystem + "\\MountedDevices", mounted));
    fs::create_directories(volume / "Users/alice");
    winapi::writeHive((volume / "Users/alice/NTUSER.DAT").string(), "HKEY_CURRENT_USER",
                      regKey("HKEY_CURRENT_USER\\Environment", stringValue("WHO", "alice")));
    writeFile(volume / "pagefile.sys", std::string(8192, 'p'));
    writeFile(dir / "data/pagefile.sys", std::string(16384, 'd'));
    return volume;
  }

  fs::path makeBcd() {
    const fs::path bcd = dir / "BCD";
    auto element = [](const std::string& object, const std::string& id, const std::string& value) {
      return regKey(kBcd + "\\Objects\\" + object + "\\Elements\\" + id, value);
    };
    winapi::writeHive(
        bcd.string(), kBcd,
        element(kBootManager, "24000001", multiStringValue("Element", {kInstalled})) +
            element(kBootManager, "12000004", stringValue("Element", "Windows Boot Manager")) +
            element(kInstalled, "12000004", stringValue("Element", "Windows Server 2003")));
    return bcd;
  }

  // make_disk_image.sh LAYOUT; the raw image's path.
  fs::path makeDisk(const std::string& layout, const fs::path& volume,
                    const std::string& options = "") {
    const fs::path base = dir / layout;
    const std::string command = "NTFS_FILL=" + std::string(VRX_NTFS_FILL) + " " + VRX_SOURCE_DIR +
                                "/tests/images/make_disk_image.sh " + layout + " " + base.string() +
                                " " + volume.string() + " --bcd " + makeBcd().string() +
                                " --data " + (dir / "data").string() + " " + options;
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return base.string() + ".raw";
  }

  // The instances of `cimClass` in a JSON inventory.
  static std::vector<nlohmann::json> instancesOf(const std::string& inventory,
                                                 const std::string& cimClass) {
    std::vector<nlohmann::json> found;
    const nlohmann::json parsed = nlohmann::json::parse(inventory);
    for (const nlohmann::json& instance : parsed["instances"])
      if (instance["class"] == cimClass) found.push_back(instance["properties"]);
    return found;
  }
};

std::string fileFingerprint(const fs::path& file) {
  return std::to_string(fs::last_write_time(file).time_since_epoch().count()) + ":" +
         readFile(file);
}

TEST_F(ImageMachine, EveryContainerInventoriesAsTheVolumeFolderItWasMadeFrom) {
  const fs::path volume = makeVolume("volume", "SRV-2003");
  const fs::path raw = makeDisk("gpt", volume, "--containers all");
  const std::string classes =
      "QELTO_ComputerSystem QELTO_InstalledFix QELTO_InstalledApplication "
      "QELTO_UserEnvironmentVariable QELTO_TimeZone --now 2026-11-22T10:15:30Z";
  const Result folder = run(classes + " --machine " + volume.string());
  ASSERT_EQ(folder.status, 0) << folder.err;
  ASSERT_NE(folder.out.find("KB958644"), std::string::npos);
  ASSERT_NE(folder.out.find("alice"), std::string::npos);

  const std::string before = fileFingerprint(raw);
  for (const char* container : {"raw", "vhdx", "vhd", "vmdk", "qcow2", "E01", "001"}) {
    const Result image = run(classes + " --machine " + (dir / "gpt.").string() + container);
    EXPECT_EQ(image.status, 0) << container << ": " << image.err;
    EXPECT_TRUE(image.out == folder.out) << container << ":\n" << image.out;
    EXPECT_EQ(image.err, "") << container;  // piped: no progress
  }
  EXPECT_EQ(fileFingerprint(raw), before);

  // On a terminal (script(1) gives it one), reading the E01, which decompresses, shows progress.
  if (std::system("command -v script >/dev/null") != 0) return;
  const std::string e01 = (dir / "gpt.E01").string();
  const std::string shown = (dir / "terminal.txt").string();
  ASSERT_EQ(std::system(("script -qec '" + std::string(VRXHOST) +
                         " QELTO_ComputerSystem --machine " + e01 + "' /dev/null >" + shown)
                            .c_str()),
            0);
  EXPECT_NE(readFile(shown).find("reading " + e01 + ": "), std::string::npos) << readFile(shown);
}

TEST_F(ImageMachine, TheSystemPartitionAndTheLetteredDrivesAreTheMachines) {
  const fs::path raw = makeDisk("gpt", makeVolume("volume", "SRV-2003"));
  const Result image = run("QELTO_OperatingSystem QELTO_PageFile --machine " + raw.string());
  ASSERT_EQ(image.status, 0) << image.err;
  // The boot store is the EFI system partition's.
  const auto os = instancesOf(image.out, "QELTO_OperatingSystem");
  ASSERT_EQ(os.size(), 1u);
  EXPECT_EQ(os[0]["BootConfigurationFileName"], "Windows Boot Manager");
  // D: is the data partition, as MountedDevices names it by its GUID.
  const auto pageFiles = instancesOf(image.out, "QELTO_PageFile");
  ASSERT_EQ(pageFiles.size(), 2u);
  EXPECT_EQ(pageFiles[0]["Name"], "C:\\pagefile.sys");
  EXPECT_EQ(pageFiles[1]["Name"], "D:\\pagefile.sys");

  // An MBR disk boots from "System Reserved"; its data partition has no letter here.
  const fs::path mbr = makeDisk("mbr", dir / "volume");
  const Result fromMbr = run("QELTO_OperatingSystem QELTO_PageFile --machine " + mbr.string());
  ASSERT_EQ(fromMbr.status, 0) << fromMbr.err;
  EXPECT_EQ(instancesOf(fromMbr.out, "QELTO_OperatingSystem")[0]["BootConfigurationFileName"],
            "Windows Boot Manager");
  EXPECT_EQ(instancesOf(fromMbr.out, "QELTO_PageFile").size(), 1u);

  // A volume imaged without a partition table is drive C: alone.
  const fs::path bare = makeDisk("bare", dir / "volume");
  const Result fromBare = run("QELTO_ComputerSystem -v --machine " + bare.string());
  ASSERT_EQ(fromBare.status, 0) << fromBare.err;
  EXPECT_NE(fromBare.out.find("SRV-2003"), std::string::npos);
  // -v tells what reading the image cost: a small part of its 128 MiB.
  const std::size_t note = fromBare.err.find("disk image: ");
  ASSERT_NE(note, std::string::npos) << fromBare.err;
  EXPECT_NE(fromBare.err.find(" of 134217728 bytes read (", note), std::string::npos)
      << fromBare.err;
}

TEST_F(ImageMachine, TwoWindowsAreListedAndOneIsPickedByItsNumber) {
  const fs::path first = makeVolume("first", "FIRST-PC");
  makeVolume("second", "SECOND-PC");
  const fs::path raw = makeDisk("two-windows", first, "--second " + (dir / "second").string());
  const Result both = run("QELTO_ComputerSystem --machine " + raw.string());
  EXPECT_EQ(both.status, 1);
  EXPECT_EQ(both.out, "");
  EXPECT_EQ(both.err, "vrxhost: " + raw.string() +
                          ": 2 Windows installations: partition 1 (62 MiB, Windows Server 2003 "
                          "FIRST-PC), partition 5 (64 MiB, Windows Server 2003 SECOND-PC); "
                          "choose one with --partition\n");

  const Result second = run("QELTO_ComputerSystem --partition 5 --machine " + raw.string());
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_NE(second.out.find("SECOND-PC"), std::string::npos);
  const Result none = run("--partition 3 --machine " + raw.string());
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err.rfind("vrxhost: " + raw.string() + ": no partition 3 (", 0), 0u) << none.err;
  const Result folder = run("--partition 1 --machine " + first.string());
  EXPECT_EQ(folder.status, 1);
  EXPECT_NE(folder.err.find("a partition is picked in a disk image"), std::string::npos);
}

TEST_F(ImageMachine, ImagesThatCannotBeReadStopTheRunWithOneLine) {
  makeVolume("volume", "SRV-2003");
  writeFile(dir / "kept.json", "an earlier inventory\n");
  const fs::path data = makeDisk("bare", dir / "data");
  const fs::path truncated = dir / "truncated.raw";
  fs::copy_file(makeDisk("gpt", dir / "volume"), truncated);
  fs::resize_file(truncated, 60 << 20);
  const std::pair<fs::path, std::string> cases[] = {
      {data, ": no Windows on it (the whole image NTFS 128 MiB)"},
      {truncated,
       ": partition 2 ends at byte 102760448 but the image has 62914560 bytes; the image is "
       "truncated"},
  };
  for (const auto& [image, line] : cases) {
    const Result result =
        run("--output " + (dir / "kept.json").string() + " --machine " + image.string());
    EXPECT_EQ(result.status, 1) << image;
    EXPECT_EQ(result.err.rfind("vrxhost: " + image.string() + line, 0), 0u) << result.err;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
    EXPECT_EQ(readFile(dir / "kept.json"), "an earlier inventory\n");
  }
}

}  // namespace
