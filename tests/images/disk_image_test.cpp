// Partitions of disks laid out by sgdisk and sfdisk, checked against what those tools report.
#include "winapi/image/disk_image.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "tests/images/test_disks.h"
#include "winapi/image/mounted_devices.h"

namespace winapi {
namespace {

const std::uint64_t mib = 1 << 20;

// What a command prints.
std::string output(const std::string& command) {
  std::string text;
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  char buffer[4096];
  while (pipe && fgets(buffer, sizeof buffer, pipe.get())) text += buffer;
  return text;
}

// The unique GUID sgdisk shows for a partition, in the order a GPT entry stores its bytes.
std::string gptUniqueGuid(const std::string& disk, unsigned number) {
  const std::string info = output("sgdisk -i " + std::to_string(number) + " " + disk);
  const std::string label = "Partition unique GUID: ";
  std::string hex = info.substr(info.find(label) + label.size(), 36);
  std::string digits;
  for (char c : hex)
    if (c != '-') digits += c;
  std::string bytes;
  for (std::size_t i = 0; i < 32; i += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  // The first three fields are little-endian in the entry.
  std::swap(bytes[0], bytes[3]);
  std::swap(bytes[1], bytes[2]);
  std::swap(bytes[4], bytes[5]);
  std::swap(bytes[6], bytes[7]);
  return bytes;
}

TEST(DiskImage, GptPartitionsAreNumberedAndNamedAsTheTableHasThem) {
  SKIP_WITHOUT_TEST_DISKS();
  const auto image = DiskImage::open(testDisk("gpt.raw"));
  const auto& partitions = image->partitions();
  ASSERT_EQ(partitions.size(), 3u);
  EXPECT_EQ(partitions[0].number, 1u);
  EXPECT_EQ(partitions[0].offset, mib);
  EXPECT_EQ(partitions[0].size, 40 * mib);
  EXPECT_EQ(partitions[0].fileSystem, FileSystemKind::Fat);
  EXPECT_EQ(partitions[0].fileSystemName, "FAT32");
  EXPECT_TRUE(partitions[0].efiSystem);
  EXPECT_EQ(partitions[1].number, 2u);
  EXPECT_EQ(partitions[1].offset, 41 * mib);
  EXPECT_EQ(partitions[1].fileSystem, FileSystemKind::Ntfs);
  EXPECT_FALSE(partitions[1].efiSystem);
  EXPECT_EQ(partitions[1].name, "Basic data partition");
  EXPECT_EQ(partitions[2].number, 3u);
  EXPECT_EQ(partitions[2].fileSystem, FileSystemKind::Ntfs);
  EXPECT_EQ(partitions[2].name, "Data");
  for (const Partition& partition : partitions) {
    EXPECT_EQ(partition.scheme, PartitionScheme::Gpt);
    EXPECT_EQ(mountedDeviceData(partition),
              "DMIO:ID:" + gptUniqueGuid(testDisk("gpt.raw"), partition.number))
        << partition.number;
  }
}

TEST(DiskImage, MbrPartitionsCarryTheDiskSignatureAndLogicalOnesAreNumberedFromFive) {
  SKIP_WITHOUT_TEST_DISKS();
  for (const std::string name : {"mbr.raw", "two-windows.raw"}) {
    const std::uint32_t signature = static_cast<std::uint32_t>(
        std::stoul(output("sfdisk --disk-id " + testDisk(name)), nullptr, 16));
    const auto image = DiskImage::open(testDisk(name));
    ASSERT_EQ(image->partitions().size(), 2u) << name;
    for (const Partition& partition : image->partitions()) {
      EXPECT_EQ(partition.scheme, PartitionScheme::Mbr);
      EXPECT_EQ(partition.diskSignature, signature) << name;
      EXPECT_EQ(partition.fileSystem, FileSystemKind::Ntfs) << name;
      EXPECT_FALSE(partition.efiSystem);
    }
  }
  const auto twoWindows = DiskImage::open(testDisk("two-windows.raw"));
  EXPECT_EQ(twoWindows->partitions()[0].number, 1u);
  EXPECT_EQ(twoWindows->partitions()[0].offset, mib);
  // The extended partition (2) holds no file system of its own and is not listed.
  EXPECT_EQ(twoWindows->partitions()[1].number, 5u);
  EXPECT_EQ(twoWindows->partitions()[1].offset, 64 * mib);
  EXPECT_EQ(twoWindows->partitions()[1].size, 64 * mib);
}

TEST(DiskImage, AVolumeWithoutATableIsTheWholeImage) {
  SKIP_WITHOUT_TEST_DISKS();
  const auto image = DiskImage::open(testDisk("bare.raw"));
  ASSERT_EQ(image->partitions().size(), 1u);
  const Partition& whole = image->partitions()[0];
  EXPECT_EQ(whole.number, 0u);
  EXPECT_EQ(whole.offset, 0u);
  EXPECT_EQ(whole.size, 128 * mib);
  EXPECT_EQ(whole.fileSystem, FileSystemKind::Ntfs);
  EXPECT_EQ(whole.scheme, PartitionScheme::WholeImage);
  EXPECT_EQ(describePartition(whole), "the whole image");
  EXPECT_EQ(mountedDeviceData(whole), "");
}

TEST(DiskImage, EveryContainerHoldsTheSameDisk) {
  SKIP_WITHOUT_TEST_DISKS();
  const auto raw = DiskImage::open(testDisk("gpt.raw"));
  const std::pair<const char*, const char*> containers[] = {
      {"gpt.raw", "raw"},   {"gpt.001", "split raw"}, {"gpt.vhdx", "VHDX"}, {"gpt.vhd", "VHD"},
      {"gpt.vmdk", "VMDK"}, {"gpt.qcow2", "QCOW2"},   {"gpt.E01", "EWF"}};
  for (const auto& [name, format] : containers) {
    const auto image = DiskImage::open(testDisk(name));
    EXPECT_EQ(image->format(), format);
    ASSERT_EQ(image->partitions().size(), raw->partitions().size()) << name;
    for (std::size_t i = 0; i < raw->partitions().size(); ++i) {
      EXPECT_EQ(image->partitions()[i].offset, raw->partitions()[i].offset) << name;
      EXPECT_EQ(image->partitions()[i].fileSystem, raw->partitions()[i].fileSystem) << name;
      EXPECT_EQ(mountedDeviceData(image->partitions()[i]), mountedDeviceData(raw->partitions()[i]))
          << name;
    }
  }
}

}  // namespace
}  // namespace winapi
