// Drive letters from MountedDevices values: each letter to the partition whose identity its data
// holds, whatever else the key holds.
#include "winapi/image/mounted_devices.h"

#include <gtest/gtest.h>

namespace winapi {
namespace {

Partition mbrPartition(unsigned number, std::uint32_t signature, std::uint64_t offset) {
  Partition partition;
  partition.number = number;
  partition.scheme = PartitionScheme::Mbr;
  partition.diskSignature = signature;
  partition.offset = offset;
  return partition;
}

Partition gptPartition(unsigned number, unsigned char first) {
  Partition partition;
  partition.number = number;
  partition.scheme = PartitionScheme::Gpt;
  partition.guid.fill(0x11);
  partition.guid[0] = first;
  return partition;
}

TEST(MountedDevices, LettersGoToThePartitionsTheirDataNames) {
  const std::vector<Partition> mbr = {mbrPartition(1, 0x1234ABCD, 0x100000),
                                      mbrPartition(5, 0x1234ABCD, 0x4000000)};
  const std::string first("\xCD\xAB\x34\x12\x00\x00\x10\x00\x00\x00\x00\x00", 12);
  const std::string logical("\xCD\xAB\x34\x12\x00\x00\x00\x04\x00\x00\x00\x00", 12);
  const std::string otherDisk("\xCE\xAB\x34\x12\x00\x00\x10\x00\x00\x00\x00\x00", 12);
  EXPECT_EQ(mountedDeviceData(mbr[0]), first);
  EXPECT_EQ(driveLetters({{"\\DosDevices\\C:", logical},
                          {"\\DosDevices\\d:", first},
                          {"\\DosDevices\\E:", otherDisk},
                          {"\\??\\Volume{0a1b2c3d-0000-0000-0000-100000000000}", first},
                          {"\\DosDevices\\F:", ""}},
                         mbr),
            (std::map<char, unsigned>{{'c', 5}, {'d', 1}}));

  const std::vector<Partition> gpt = {gptPartition(1, 0xA0), gptPartition(2, 0xB0)};
  std::string second = "DMIO:ID:" + std::string(16, '\x11');
  second[8] = '\xB0';
  EXPECT_EQ(mountedDeviceData(gpt[1]), second);
  EXPECT_EQ(
      driveLetters({{"\\DosDevices\\C:", second}, {"\\DosDevices\\X:", second.substr(8)}}, gpt),
      (std::map<char, unsigned>{{'c', 2}}));
}

}  // namespace
}  // namespace winapi
