// A partition of a disk image as the collector needs it: where it is, what file system it holds,
// and how Windows names it in HKLM\SYSTEM\MountedDevices.
#ifndef VRX_WINAPI_IMAGE_PARTITION_H
#define VRX_WINAPI_IMAGE_PARTITION_H

#include <array>
#include <cstdint>
#include <string>

namespace winapi {

enum class FileSystemKind { None, Ntfs, Fat, Other, BitLocker };

enum class PartitionScheme { WholeImage, Mbr, Gpt };

struct Partition {
  // As the partition table numbers it, as fdisk and sgdisk show it: 1 for the first, 5, 6 … for
  // MBR logical partitions; 0 for a volume that fills an image without a partition table.
  unsigned number = 0;
  std::uint64_t offset = 0;  // in bytes from the start of the disk
  std::uint64_t size = 0;    // in bytes
  FileSystemKind fileSystem = FileSystemKind::None;
  std::string fileSystemName;  // "NTFS", "FAT32", "ext4" …; "" without one
  bool efiSystem = false;      // the GPT EFI system partition
  std::string name;            // a GPT partition's name; "" otherwise
  PartitionScheme scheme = PartitionScheme::WholeImage;
  std::uint32_t diskSignature = 0;       // an MBR disk's, from sector 0
  std::array<unsigned char, 16> guid{};  // a GPT partition's unique GUID, as stored in its entry
};

// "partition 2", "the whole image": how messages name it.
std::string describePartition(const Partition& partition);

}  // namespace winapi

#endif
